// A main loop: a root with one child that ticks three times and then ends, which ends the root.

#include <vx/vx.h>

#include <cstdio>

namespace {

class Ticker : public vxApplet {
public:
    Ticker() { TimeoutStart(&mTimeout, 10); }

    vxAppletMsg AppletLoop(vxAppletMsg aMsg) override {
        static_cast<void>(aMsg);
        HandleExpiredTimeouts();
        return mTicks == 3 ? vxAppletMsg_Exit : vxAppletMsg_None;
    }

    void OnTimeouts() override {
        printf("tick %d\n", ++mTicks);
        TimeoutStart(&mTimeout, 10);
    }

private:
    vxTimeout mTimeout;
    int mTicks = 0;
};

}  // namespace

int main() {
    vxApplet theRoot;
    theRoot.AppletAttach(new Ticker, vxAppletOption_SelfDestruct);
    while (theRoot.AppletRun(vxAppletMsg_None) != vxAppletMsg_Exit) {
        theRoot.SelfWait();
    }
    return 0;
}
