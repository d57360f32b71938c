// The costs on the modelling thread's hot path: sending a signal, recording a
// startChange/endChange pair into a group, and undoing and redoing it. The baseline for the
// signal is a plain vector of std::function, the least a signal can cost.
#include <functional>
#include <vector>

#include <benchmark/benchmark.h>

#include "ObrixBase/ObrixBase.h"

namespace {

struct ValueState : qvObrixBase::StatefulUndoState {
    explicit ValueState(double v) : value(v) {}
    std::uint32_t getNumBytesUsed() const override { return sizeof(*this); }
    double value;
};

struct Value : qvObrixBase::StatefulUndoCmd {
    Value() : StatefulUndoCmd("Set value") {}
    ~Value() = default;
    qv::Reference<qvObrixBase::StatefulUndoState> getState() override {
        return new ValueState(value);
    }
    void setState(qv::Reference<qvObrixBase::StatefulUndoState> s) override {
        value = static_cast<ValueState&>(*s).value;
    }
    double value = 0.0;
};

void BM_SignalSend(benchmark::State& state) {
    qvRTB::Signal<int> signal;
    qvRTB::SignalClient client;
    long sum = 0;
    signal.connect(client, [&sum](int v) { sum += v; });
    for (auto _ : state)
        signal.send(1);
    benchmark::DoNotOptimize(sum);
}
BENCHMARK(BM_SignalSend);

void BM_StdFunctionVectorSend(benchmark::State& state) {
    std::vector<std::function<void(int)>> slots;
    long sum = 0;
    slots.emplace_back([&sum](int v) { sum += v; });
    for (auto _ : state)
        for (auto& f : slots)
            f(1);
    benchmark::DoNotOptimize(sum);
}
BENCHMARK(BM_StdFunctionVectorSend);

// One user step: a group with a before- and an after-snapshot; the history keeps 100 steps.
void BM_RecordChangeInGroup(benchmark::State& state) {
    qvObrixBase::undoInit();
    qvUndo::getInstalledManager()->setMaxGroups(100);
    Value v;
    for (auto _ : state) {
        VK_undo_push_new_group("step", false);
        v.startChange();
        v.value += 1.0;
        v.endChange();
        VK_undo_pop_group(true);
    }
    qvUndo::installManager(nullptr);
}
BENCHMARK(BM_RecordChangeInGroup);

void BM_UndoRedoGroup(benchmark::State& state) {
    qvObrixBase::undoInit();
    qvUndo::Manager& history = *qvUndo::getInstalledManager();
    Value v;
    VK_undo_push_new_group("step", false);
    v.startChange();
    v.value = 1.0;
    v.endChange();
    VK_undo_pop_group(true);
    for (auto _ : state) {
        history.undo();
        history.redo();
    }
    qvUndo::installManager(nullptr);
}
BENCHMARK(BM_UndoRedoGroup);

void BM_GuardedToleranceRead(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(get_crv_fit_tolerance());
}
BENCHMARK(BM_GuardedToleranceRead);

} // namespace
