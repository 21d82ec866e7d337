#pragma once

#include <cstdint>

#include "vx/Api.h"
#include "vx/CString.h"

class vxJSONObject;

/// Why an operation failed: a code, a message, the module that raised it, and the errors that led
/// to it.
///
/// A code of 0 means no error; the other codes are each module's own. Where a lower layer's error
/// becomes a higher layer's, ConvertTo() keeps the lower one in the history, so that a report shows
/// the whole chain and a caller can look for the error of one module.
///
///     vxError theError;
///     if (!vxSomething_Read(theError)) {
///         theError.ConvertTo(-3, "cannot load the settings", "Settings");
///     }
///     theError.ToString();   // " (error: -3 [Settings] 'cannot load the settings') (error: 5)"
///
/// Arguments may be parts of the error itself.
///
/// Threads:  one at a time, as its strings.
class VX_EXPORT vxError {
public:
    /// One error of a chain, with those that it replaced behind it.
    ///
    /// Owner:    each link owns the copy of its module name and the link behind it.
    /// Threads:  one at a time.
    /// Cost:     copying, printing and destroying are linear in the chain and need no stack for it.
    class VX_EXPORT vxErrorInfo {
    public:
        /// A link without history; the module name is copied, null means unknown.
        vxErrorInfo(int aCode, const vxCString& aMessage, const char* aModule);
        /// Reads one link, not its history, from the members that vxError::ToJSON() writes; missing
        /// ones and those of another kind read as code 0, empty message and no module.
        explicit vxErrorInfo(const vxJSONObject& anObject);
        /// Copies the whole chain.
        vxErrorInfo(const vxErrorInfo& anInfo);
        /// Copies code, message and module, and the history where there is one.
        ///
        /// Without one the history that was here stays behind the new values. Programs depend on
        /// it; to drop a history, assign to a new vxError.
        vxErrorInfo& operator=(const vxErrorInfo& anInfo);
        ~vxErrorInfo();

        vxCString ToString() const;       ///< As vxError::ToString().
        vxCString ToShortString() const;  ///< As vxError::ToShortString().
        /// As vxError::FetchModuleError().
        bool FetchModuleError(const char* aModule, vxError& anError) const;
        /// As vxError::ToJSON().
        void ToJSON(vxJSONObject& anObject) const;

    private:
        friend class vxError;

        vxErrorInfo* CopyChain() const;
        void SetModule(const char* aModule);
        void FreeHistory();

        int32_t mCode;           // 0: no error
        vxCString mMessage;      // for people; may be empty
        const char* mModule;     // owned; null when unknown
        vxErrorInfo* mPrevious;  // owned; the error that this one replaced, or null
    };

    /// No error: code 0, no message, no module, no history.
    vxError() : mError(0, vxCString(), NULL) {}
    /// An error without module and history.
    vxError(int aCode, const vxCString& aMessage) : mError(aCode, aMessage, NULL) {}
    /// Copies the whole chain.
    vxError(const vxError& anError) = default;
    /// As vxErrorInfo::operator=(): the history stays where `anError` has none.
    vxError& operator=(const vxError& anError) = default;
    /// Sets the code and empties the message; module and history stay.
    vxError& operator=(int aCode);
    /// Sets the message alone; null empties it.
    vxError& operator=(const char* aMessage);

    /// Compares the code alone.
    bool operator==(int aCode) const { return mError.mCode == aCode; }
    /// Compares the code alone.
    bool operator!=(int aCode) const { return mError.mCode != aCode; }

    /// Returns the code; 0 means no error.
    int GetErrorCode() const { return mError.mCode; }
    /// Returns the message.
    vxCString GetErrorStr() const { return mError.mMessage; }
    /// Returns the module name, or null when it is unknown; it is good until the next change.
    const char* GetModule() const { return mError.mModule; }

    /// Sets the module name to a copy of the text; null means unknown.
    void SetModule(const char* aModule) { mError.SetModule(aModule); }
    /// Sets module, code and message; the history stays.
    void Set(const char* aModule, int aCode, const vxCString& aMessage);

    /// Puts a new error in front of the current one, which becomes the newest of the history.
    ///
    /// A current error of code 0 is kept as well.
    void ConvertTo(int aCode, const vxCString& aMessage, const char* aModule);
    /// Puts code, message and module of another error in front; its history is not taken.
    void ConvertTo(const vxError& anError);

    /// Assigns the newest error that this module raised, with its own history, to `anError`.
    ///
    /// Module names are compared byte for byte; an error without a module never matches.
    ///
    /// Fails:    false when there is none; `anError` is left alone.
    bool FetchModuleError(const char* aModule, vxError& anError) const;

    /// Returns the number of errors behind the current one.
    unsigned GetErrorHistoryCount() const;
    /// Returns an error of the history with its own history: 0 is the one that the current error
    /// replaced, the last is the initial one. An index beyond them gives an error of code 0.
    vxError GetErrorHistory(unsigned anIndex) const;
    /// Returns the oldest error of the chain; the error itself when it has no history.
    vxError GetInitialError() const;

    /// Returns the chain as text, newest first: " (error: CODE [MODULE] 'MESSAGE')" for each error,
    /// without the parts that are empty. It ends before the first error of code 0.
    vxCString ToString() const { return mError.ToString(); }
    /// Returns "CODE: MESSAGE", or "CODE" when there is no message; empty for code 0.
    vxCString ToShortString() const { return mError.ToShortString(); }

    /// Adds the members "code" always, "message" unless it is empty, "module" when one is set, and
    /// "previous", an object of the same form, when there is a history. What the object has under a
    /// name that is written is replaced. A handle on nothing gets an object of its own.
    ///
    /// Asserts:  vxJSON_Is(mEntry, kvxJSON_Object), of a handle on another node; nothing is written.
    void ToJSON(vxJSONObject& anObject) const { mError.ToJSON(anObject); }

    /// Reads what ToJSON() writes.
    ///
    /// The result is assigned, so that an object without "previous" leaves the history that was
    /// here.
    ///
    /// Fails:    false when "code" is missing or no 32-bit integer; nothing changes.
    bool FromJSON(const vxJSONObject& anObject);

private:
    explicit vxError(const vxErrorInfo& anInfo) : mError(anInfo) {}

    vxErrorInfo mError;  // the newest error
};
