#pragma once

#include "vx/Api.h"
#include "vx/List.h"

class vxListener;

/// Calls its listeners, one after the other, whenever it has a message for them.
///
/// A broadcast runs in the thread of its caller and ends when the last listener has returned;
/// nothing is queued. Each side remembers the other, so either may be destroyed first.
///
///     class Player : public vxBroadcaster { ... BroadcastMessage(kPlayer_Stopped, this); ... };
///     class Display : public vxListener {
///         void ListenToMessage(int aMessage, void* aParam) override { ... }
///     };
///
///     thePlayer.AddListener(&theDisplay);
///
/// During a broadcast, listeners may do as they like: leave, add others, destroy themselves, other
/// listeners or the broadcaster. Who leaves before being called is not called; who is added is
/// called behind all others; with the broadcaster the broadcast ends. A listener that leaves and
/// comes back on each call is called without end.
///
/// Owner:    the listeners belong to the caller.
/// Threads:  one at a time for a broadcaster and all its listeners; nothing is locked.
class VX_EXPORT vxBroadcaster {
public:
    /// Creates a broadcaster without listeners that sends.
    vxBroadcaster() : mfIsBroadcasting(true) {}

    /// Copies whether `aBroadcaster` sends; the copy has no listeners.
    vxBroadcaster(const vxBroadcaster& aBroadcaster)
        : mfIsBroadcasting(aBroadcaster.mfIsBroadcasting) {}

    /// Copies whether `aBroadcaster` sends, and forgets the listeners of this one, also where it is
    /// assigned to itself.
    ///
    /// Neither is RemoveListener() called nor a message sent.
    vxBroadcaster& operator=(const vxBroadcaster& aBroadcaster);

    /// Broadcasts message 0 with this `vxBroadcaster*` as parameter, unless stopped; then no
    /// listener refers to it any more.
    ///
    /// What a derived class added is gone by then: the parameter tells who dies, and is not asked.
    virtual ~vxBroadcaster();

    /// Registers the listener behind all others; one that is registered stays where it is.
    ///
    /// Asserts:  aListener != NULL; nothing is registered then.
    /// Owner:    the caller.
    /// Cost:     linear in the listeners.
    virtual void AddListener(vxListener* aListener);

    /// Takes the listener out; one that is not registered is left alone.
    ///
    /// The destructor of a listener calls it.
    ///
    /// Cost:     linear in the listeners before it.
    virtual void RemoveListener(vxListener* aListener);

    /// Calls ListenToMessage() of every listener that is listening, in the order of registration;
    /// calls nobody while stopped.
    ///
    /// Programs number their messages from 1; 0 says that the broadcaster is being destroyed.
    virtual void BroadcastMessage(int aMessage, void* aParam);

    /// Lets messages through again.
    void StartBroadcasting() { mfIsBroadcasting = true; }

    /// Keeps messages back for good, also the one of the destructor; listeners stay registered.
    ///
    /// A broadcast that has begun reaches everybody.
    void StopBroadcasting() { mfIsBroadcasting = false; }

    /// Are messages let through?
    bool IsBroadcasting() const { return mfIsBroadcasting; }

private:
    friend class vxListener;

    void ForgetListeners();

    vxList<void*> mListeners;  // vxListener, by registration, each once; not owned
    bool mfIsBroadcasting;
};

/// Receives the messages of the broadcasters that it is registered with.
///
/// Threads:  as vxBroadcaster.
class VX_EXPORT vxListener {
public:
    /// Creates a listener that is listening, registered nowhere.
    vxListener() : mfIsListening(true) {}

    /// Copies whether `aListener` is listening; the copy is registered nowhere.
    vxListener(const vxListener& aListener) : mfIsListening(aListener.mfIsListening) {}

    /// Copies whether `aListener` is listening, and takes this one out of its broadcasters, also
    /// where it is assigned to itself.
    ///
    /// RemoveListener() is not called.
    vxListener& operator=(const vxListener& aListener);

    /// Takes itself out of its broadcasters through their RemoveListener().
    virtual ~vxListener();

    /// Called for each message; the base does nothing.
    ///
    /// Message 0 comes from the destructor of the broadcaster that `aParam` points to, as a
    /// `vxBroadcaster*`.
    virtual void ListenToMessage(int aMessage, void* aParam);

    /// Lets messages in again.
    void StartListening() { mfIsListening = true; }

    /// Makes broadcasts pass this listener by; it stays registered.
    void StopListening() { mfIsListening = false; }

    /// Are messages let in?
    bool IsListening() const { return mfIsListening; }

    /// Notes a broadcaster that has registered this listener; vxBroadcaster::AddListener() calls
    /// it, which also sees to it that none is noted twice.
    void AddBroadcaster(vxBroadcaster* aBroadcaster);

    /// Strikes one note of the broadcaster; vxBroadcaster::RemoveListener() calls it.
    void RemoveBroadcaster(vxBroadcaster* aBroadcaster);

private:
    void ForgetBroadcasters();

    vxList<void*> mBroadcasters;  // vxBroadcaster, by registration; not owned
    bool mfIsListening;
};
