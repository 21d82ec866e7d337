// What a counted handle costs beside other intrusive and shared ones.

#include <Poco/AutoPtr.h>
#include <Poco/RefCountedObject.h>
#include <benchmark/benchmark.h>
#include <glib.h>
#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <boost/smart_ptr/intrusive_ref_counter.hpp>

#include <QExplicitlySharedDataPointer>
#include <QSharedData>
#include <memory>

#include "vx/Ref.h"

namespace {

struct Counted : vxRefCounted {
    int mValue = 1;
};
struct PocoCounted : Poco::RefCountedObject {
    int mValue = 1;
};
struct QtCounted : QSharedData {
    virtual ~QtCounted() = default;
    int mValue = 1;
};
struct BoostCounted : boost::intrusive_ref_counter<BoostCounted> {
    virtual ~BoostCounted() = default;
    int mValue = 1;
};
struct Plain {
    virtual ~Plain() = default;
    int mValue = 1;
};

// Copies one handle and drops the copy.
template <typename Handle>
void CopyDrop(benchmark::State& aState, const Handle& aHandle) {
    for (auto _ : aState) {
        Handle theCopy(aHandle);
        benchmark::DoNotOptimize(theCopy);
    }
}

const vxRef<Counted> sRef(new Counted);
const Poco::AutoPtr<PocoCounted> sPoco(new PocoCounted);
const QExplicitlySharedDataPointer<QtCounted> sQt(new QtCounted);
const boost::intrusive_ptr<BoostCounted> sBoost(new BoostCounted);

void GLibCopyDrop(benchmark::State& aState) {
    static Plain* const sBox = static_cast<Plain*>(g_atomic_rc_box_alloc0(sizeof(Plain)));
    for (auto _ : aState) {
        void* theCopy = g_atomic_rc_box_acquire(sBox);
        benchmark::DoNotOptimize(theCopy);
        g_atomic_rc_box_release(theCopy);
    }
}

// Two threads copy handles to the same object.
BENCHMARK_CAPTURE(CopyDrop, vx, sRef)->Name("refs/copy_drop/vx");
BENCHMARK_CAPTURE(CopyDrop, poco, sPoco)->Name("refs/copy_drop/Poco_AutoPtr");
BENCHMARK_CAPTURE(CopyDrop, qt, sQt)->Name("refs/copy_drop/QExplicitlySharedDataPointer");
BENCHMARK_CAPTURE(CopyDrop, boost, sBoost)->Name("refs/copy_drop/boost_intrusive_ptr");
BENCHMARK_CAPTURE(CopyDrop, vx2, sRef)->Name("refs/copy_drop_2thr/vx")->Threads(2)->UseRealTime();
BENCHMARK_CAPTURE(CopyDrop, qt2, sQt)
    ->Name("refs/copy_drop_2thr/QExplicitlySharedDataPointer")
    ->Threads(2)
    ->UseRealTime();
BENCHMARK_CAPTURE(CopyDrop, poco2, sPoco)
    ->Name("refs/copy_drop_2thr/Poco_AutoPtr")
    ->Threads(2)
    ->UseRealTime();
BENCHMARK(GLibCopyDrop)->Name("refs/copy_drop_2thr/GLib_atomic_rc_box")->Threads(2)->UseRealTime();

// Makes an object, holds it once and lets it go.
template <typename Handle, typename Object>
void CreateDrop(benchmark::State& aState) {
    for (auto _ : aState) {
        Handle theHandle(new Object);
        benchmark::DoNotOptimize(theHandle);
    }
}

void SharedPtrCreateDrop(benchmark::State& aState) {
    for (auto _ : aState) {
        std::shared_ptr<Plain> theHandle = std::make_shared<Plain>();
        benchmark::DoNotOptimize(theHandle);
    }
}

void GLibCreateDrop(benchmark::State& aState) {
    for (auto _ : aState) {
        void* theBox = g_atomic_rc_box_alloc0(sizeof(Plain));
        benchmark::DoNotOptimize(theBox);
        g_atomic_rc_box_release(theBox);
    }
}

BENCHMARK(CreateDrop<vxRef<Counted>, Counted>)->Name("refs/create_drop/vx");
BENCHMARK(SharedPtrCreateDrop)->Name("refs/create_drop/std_shared_ptr");
BENCHMARK(CreateDrop<Poco::AutoPtr<PocoCounted>, PocoCounted>)
    ->Name("refs/create_drop/Poco_AutoPtr");
BENCHMARK(GLibCreateDrop)->Name("refs/create_drop/GLib_atomic_rc_box");
BENCHMARK(CreateDrop<vxRef<Counted>, Counted>)
    ->Name("refs/create_drop_2thr/vx")
    ->Threads(2)
    ->UseRealTime();
BENCHMARK(SharedPtrCreateDrop)
    ->Name("refs/create_drop_2thr/std_shared_ptr")
    ->Threads(2)
    ->UseRealTime();
BENCHMARK(CreateDrop<Poco::AutoPtr<PocoCounted>, PocoCounted>)
    ->Name("refs/create_drop_2thr/Poco_AutoPtr")
    ->Threads(2)
    ->UseRealTime();
BENCHMARK(GLibCreateDrop)
    ->Name("refs/create_drop_2thr/GLib_atomic_rc_box")
    ->Threads(2)
    ->UseRealTime();

}  // namespace
