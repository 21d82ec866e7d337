// Worker threads that hand their results to a main loop through a message queue.

#include <vx/vx.h>

#include <cstdio>

namespace {

enum { kMessage_Square = 1, kMessage_Finished = 2 };

class Squarer : public vxStoppableThread {
public:
    Squarer(vxMessageQueue* aQueue, int aFirst, int aLast)
        : vxStoppableThread("squarer", vxThread_Kind_Joinable),
          mQueue(aQueue),
          mFirst(aFirst),
          mLast(aLast) {}

    void OnRun() override {
        for (int i = mFirst; i <= mLast && !TestExit(); ++i) {
            mQueue->Post(kMessage_Square, new int(i * i), NULL);  // the reader deletes it
        }
        mQueue->Post(kMessage_Finished, this, NULL);
    }

private:
    vxMessageQueue* mQueue;  // borrowed
    int mFirst;
    int mLast;
};

}  // namespace

int main() {
    vxMessageQueue theQueue;
    Squarer theWorkers[] = {{&theQueue, 1, 10}, {&theQueue, 11, 20}, {&theQueue, 21, 30}};
    int theRunning = 0;
    for (Squarer& theWorker : theWorkers) {
        if (theWorker.ThreadCreate() == 0) {
            theWorker.Go(kvxThreadState_Started);
            ++theRunning;
        }
    }
    printf("%d workers\n", theRunning);

    int theSum = 0;
    while (theRunning > 0) {
        vxMessage theMessage;
        if (theQueue.Get(&theMessage) != 0) {
            continue;
        }
        if (theMessage.mMessage == kMessage_Square) {
            int* theSquare = static_cast<int*>(theMessage.mParam1);
            theSum += *theSquare;
            delete theSquare;
        } else {
            static_cast<Squarer*>(theMessage.mParam1)->ThreadWaitTerminate();
            --theRunning;
        }
    }
    printf("sum of squares %d\n", theSum);
    return 0;
}
