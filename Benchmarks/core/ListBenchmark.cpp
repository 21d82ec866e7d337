// Lists of pointers beside those of the standard library and GLib: filled, walked and emptied, and
// thinned out during a walk.

#include <benchmark/benchmark.h>
#include <glib.h>

#include <list>

#include "vx/List.h"

namespace {

constexpr size_t kItems = 1000;

void* ItemAt(size_t anIndex) {
    return reinterpret_cast<void*>(anIndex + 1);
}

// Is the item one of those that the walk removes? Every second goes.
bool IsDoomed(const void* anItem) {
    return reinterpret_cast<size_t>(anItem) % 2 == 0;
}

// How fast is a list filled at one end, walked, and emptied item by item?

void PushWalkPop_vx(benchmark::State& aState) {
    for (auto _ : aState) {
        vxList<void*> theList;
        for (size_t i = 0; i < kItems; ++i) {
            theList.push_back(ItemAt(i));
        }
        vxListIterator<void*> theIterator(theList);
        while (theIterator.Next()) {
            benchmark::DoNotOptimize(*theIterator);
        }
        while (theList.size() > 0) {
            theList.pop_front();
        }
    }
}
BENCHMARK(PushWalkPop_vx)->Name("lists/push_walk_pop/vx");

void PushWalkPop_GList_prepend(benchmark::State& aState) {
    for (auto _ : aState) {
        GList* theList = nullptr;
        for (size_t i = 0; i < kItems; ++i) {
            theList = g_list_prepend(theList, ItemAt(i));
        }
        for (GList* theLink = theList; theLink != nullptr; theLink = theLink->next) {
            benchmark::DoNotOptimize(theLink->data);
        }
        while (theList != nullptr) {
            theList = g_list_delete_link(theList, theList);
        }
    }
}
BENCHMARK(PushWalkPop_GList_prepend)->Name("lists/push_walk_pop/GList_prepend");

void PushWalkPop_GQueue(benchmark::State& aState) {
    for (auto _ : aState) {
        GQueue theQueue = G_QUEUE_INIT;
        for (size_t i = 0; i < kItems; ++i) {
            g_queue_push_tail(&theQueue, ItemAt(i));
        }
        for (GList* theLink = theQueue.head; theLink != nullptr; theLink = theLink->next) {
            benchmark::DoNotOptimize(theLink->data);
        }
        while (!g_queue_is_empty(&theQueue)) {
            g_queue_pop_head(&theQueue);
        }
    }
}
BENCHMARK(PushWalkPop_GQueue)->Name("lists/push_walk_pop/GQueue");

void PushWalkPop_std_list(benchmark::State& aState) {
    for (auto _ : aState) {
        std::list<void*> theList;
        for (size_t i = 0; i < kItems; ++i) {
            theList.push_back(ItemAt(i));
        }
        for (void*& theItem : theList) {
            benchmark::DoNotOptimize(theItem);
        }
        while (!theList.empty()) {
            theList.pop_front();
        }
    }
}
BENCHMARK(PushWalkPop_std_list)->Name("lists/push_walk_pop/std_list");

// How fast does a walk remove every second item? Filling and clearing count too.

void RemoveInWalk_vx(benchmark::State& aState) {
    for (auto _ : aState) {
        vxList<void*> theList;
        for (size_t i = 0; i < kItems; ++i) {
            theList.push_back(ItemAt(i));
        }
        vxListIterator<void*> theIterator(theList);
        while (theIterator.Next()) {
            if (IsDoomed(*theIterator)) {
                theList.pop(*theIterator.GetItem());
            }
        }
        benchmark::DoNotOptimize(theList.size());
    }
}
BENCHMARK(RemoveInWalk_vx)->Name("lists/remove_in_walk/vx");

void RemoveInWalk_GQueue(benchmark::State& aState) {
    for (auto _ : aState) {
        GQueue theQueue = G_QUEUE_INIT;
        for (size_t i = 0; i < kItems; ++i) {
            g_queue_push_tail(&theQueue, ItemAt(i));
        }
        for (GList* theLink = theQueue.head; theLink != nullptr;) {
            GList* theNext = theLink->next;
            if (IsDoomed(theLink->data)) {
                g_queue_delete_link(&theQueue, theLink);
            }
            theLink = theNext;
        }
        benchmark::DoNotOptimize(theQueue.length);
        g_queue_clear(&theQueue);
    }
}
BENCHMARK(RemoveInWalk_GQueue)->Name("lists/remove_in_walk/GQueue");

void RemoveInWalk_std_list(benchmark::State& aState) {
    for (auto _ : aState) {
        std::list<void*> theList;
        for (size_t i = 0; i < kItems; ++i) {
            theList.push_back(ItemAt(i));
        }
        for (auto theItem = theList.begin(); theItem != theList.end();) {
            theItem = IsDoomed(*theItem) ? theList.erase(theItem) : std::next(theItem);
        }
        benchmark::DoNotOptimize(theList.size());
    }
}
BENCHMARK(RemoveInWalk_std_list)->Name("lists/remove_in_walk/std_list");

}  // namespace
