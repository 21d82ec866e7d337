// How long does it take to have a sleeping loop of another thread do a piece of work? Each loop can
// also watch descriptors; the caller waits for the work in the same way each time.

#include <benchmark/benchmark.h>
#include <glib.h>
#include <semaphore.h>

#include <QCoreApplication>
#include <QEvent>
#include <QThread>
#include <atomic>
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <memory>
#include <string>
#include <thread>

#include "OneCore.h"
#include "vx/Applet.h"
#include "vx/Condition.h"
#include "vx/Select.h"

namespace {

/// The answer to the caller, which is the same for all.
class Answer {
public:
    Answer() { sem_init(&mSemaphore, 0, 0); }
    ~Answer() { sem_destroy(&mSemaphore); }
    void Post() { sem_post(&mSemaphore); }
    void Wait() {
        while (sem_wait(&mSemaphore) != 0) {}
    }

private:
    sem_t mSemaphore;
};

Answer sAnswer;

void Work() {
    sAnswer.Post();
}

template <typename Loop>
void WakeUp(benchmark::State& aState) {
    Loop theLoop;
    for (auto _ : aState) {
        theLoop.Post();
        sAnswer.Wait();
    }
}

class SelectRoot : public vxApplet {
public:
    SelectRoot() {
        AppletSetOptions(vxAppletOption_Multithreaded);
        mSelect.Setup();
    }
    void RaiseWakeUpSignal() override { mSelect.Signal(); }
    void WaitWakeUpSignal(unsigned int) override {
        bool theTriggered;
        mSelect.Select(NULL, NULL, NULL, 0, NULL, &theTriggered);
    }

private:
    vxSelect mSelect;
};

class ConditionRoot : public vxApplet {
public:
    ConditionRoot() { AppletSetOptions(vxAppletOption_Multithreaded); }
    void RaiseWakeUpSignal() override { mCondition.Signal(); }
    void WaitWakeUpSignal(unsigned int) override { mCondition.Wait(); }

private:
    vxCondition mCondition;
};

template <typename Base>
class WorkingRoot : public Base {
public:
    vxAppletMsg AppletLoop(vxAppletMsg) override {
        if (mIsPosted.exchange(false)) {
            Work();
        }
        return mIsOver ? vxAppletMsg_Exit : vxAppletMsg_None;
    }
    std::atomic<bool> mIsPosted{false};
    std::atomic<bool> mIsOver{false};
};

template <typename Base>
class VxLoop {
public:
    VxLoop() {
        mThread = std::thread([this] {
            while (mRoot.AppletRun(vxAppletMsg_None) != vxAppletMsg_Exit) {
                mRoot.SelfWait();
            }
        });
    }
    ~VxLoop() {
        mRoot.mIsOver = true;
        mRoot.AppletWakeUp();
        mThread.join();
    }
    void Post() {
        mRoot.mIsPosted.exchange(true);
        mRoot.AppletWakeUp();
    }

private:
    WorkingRoot<Base> mRoot;
    std::thread mThread;
};

class AsioLoop {
public:
    AsioLoop() : mGuard(boost::asio::make_work_guard(mContext)) {
        mThread = std::thread([this] { mContext.run(); });
    }
    ~AsioLoop() {
        mGuard.reset();
        mThread.join();
    }
    void Post() { boost::asio::post(mContext, Work); }

private:
    boost::asio::io_context mContext;
    boost::asio::executor_work_guard<boost::asio::io_context::executor_type> mGuard;
    std::thread mThread;
};

class QtWorker : public QObject {
public:
    bool event(QEvent* anEvent) override {
        if (anEvent->type() == QEvent::User) {
            Work();
            return true;
        }
        return QObject::event(anEvent);
    }
};

class QtLoop {
public:
    QtLoop() {
        static int sArgumentCount = 1;
        static char sName[] = "LoopBenchmark";
        static char* sArguments[] = {sName, nullptr};
        static QCoreApplication sApplication(sArgumentCount, sArguments);
        mWorker.moveToThread(&mThread);
        mThread.start();
    }
    ~QtLoop() {
        mThread.quit();
        mThread.wait();
    }
    void Post() { QCoreApplication::postEvent(&mWorker, new QEvent(QEvent::User)); }

private:
    QThread mThread;
    QtWorker mWorker;
};

class GlibLoop {
public:
    GlibLoop() : mContext(g_main_context_new()), mLoop(g_main_loop_new(mContext, FALSE)) {
        mThread = std::thread([this] {
            g_main_context_push_thread_default(mContext);
            g_main_loop_run(mLoop);
            g_main_context_pop_thread_default(mContext);
        });
        Post();
        sAnswer.Wait();
    }
    ~GlibLoop() {
        g_main_loop_quit(mLoop);
        mThread.join();
        g_main_loop_unref(mLoop);
        g_main_context_unref(mContext);
    }
    void Post() {
        g_main_context_invoke(
            mContext,
            [](gpointer) -> gboolean {
                Work();
                return G_SOURCE_REMOVE;
            },
            nullptr);
    }

private:
    GMainContext* mContext;
    GMainLoop* mLoop;
    std::thread mThread;
};

template <typename Loop>
void Register(const std::string& anItem, const std::string& aWho) {
    benchmark::RegisterBenchmark((anItem + "/" + aWho).c_str(), WakeUp<Loop>)->UseRealTime();
    benchmark::RegisterBenchmark(
        (anItem + "_one_core/" + aWho).c_str(),
        [](benchmark::State& aState) { bench::OnOneCore(aState, WakeUp<Loop>); })
        ->MeasureProcessCPUTime();
}

const bool sfRegistered = [] {
    Register<VxLoop<SelectRoot>>("runtime/loop_wakeup", "vx");
    Register<AsioLoop>("runtime/loop_wakeup", "boost_asio_post");
    Register<QtLoop>("runtime/loop_wakeup", "Qt_postEvent");
    Register<GlibLoop>("runtime/loop_wakeup", "GMainContext_invoke");
    // The same with a loop that watches no descriptors and sleeps on a condition.
    Register<VxLoop<ConditionRoot>>("runtime/loop_wakeup_condition", "vx");
    return true;
}();

}  // namespace
