// Reads pictures of which only the last few stay in memory.

#include <vx/vx.h>

#include <cstdint>
#include <cstdio>

class Picture : public vxCachedBase {
public:
    explicit Picture(const char* aName) : mName(aName) {}

    bool Fetch() override {
        printf("load %s\n", mName);
        mSize = 100;
        return true;
    }

    void Trash() override {
        printf("drop %s\n", mName);
        mSize = 0;
    }

    vxCString GetID() override { return mName; }

private:
    const char* mName;
};

int main() {
    vxCache theCache(SIZE_MAX, 1);  // no limit of size; one picture, and one more
    const vxRef<Picture> theA = new Picture("a");
    const vxRef<Picture> theB = new Picture("b");
    const vxRef<Picture> theC = new Picture("c");
    for (const vxRef<Picture>& thePicture : {theA, theB, theC}) {
        theCache.Attach(thePicture.Get());
    }
    for (const vxRef<Picture>& thePicture : {theA, theB, theA, theC, theB}) {
        thePicture->OnReadAccess();
    }
    return 0;
}
