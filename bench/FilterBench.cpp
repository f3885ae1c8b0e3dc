// What the main thread does for one keystroke in the search field, with 10,000 hosts: filtering, layout and painting.
#include "ui/SidebarView.h"
#include "ui/WindowStand.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <ctime>
#include <string>
#include <vector>

namespace {

using namespace velmora;

std::vector<SSHHost> tenThousandHosts() {
    std::vector<SSHHost> hosts(10'000);
    for (std::size_t i = 0; i < hosts.size(); ++i) {
        const auto number = std::to_string(i);
        hosts[i].name = "server " + number;
        hosts[i].hostname = "host-" + number + ".internal.example";
    }
    return hosts;
}

/// In milliseconds, without what other programs take away.
double mainThreadTime() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

/// The keys are typed one after the other, over and over; the field is emptied between.
void typeInto(benchmark::State& state, const QString& text) {
    WindowStand stand;
    stand.setHosts(tenThousandHosts());
    SelectedHost selected;
    SidebarView sidebar(stand.services, selected);
    sidebar.resize(320, 600);
    sidebar.show();
    selected.set(stand.host(4321).id);
    QApplication::processEvents();
    double longest = 0;
    qsizetype position = 0;
    for (auto _ : state) {
        if (position == text.size()) {
            state.PauseTiming();
            sidebar.search().clear();
            QApplication::processEvents();
            position = 0;
            state.ResumeTiming();
        }
        const double start = mainThreadTime();
        QKeyEvent key(QEvent::KeyPress, 0, Qt::NoModifier, text.mid(position++, 1));
        QApplication::sendEvent(&sidebar.search(), &key);
        QApplication::processEvents();
        longest = std::max(longest, mainThreadTime() - start);
    }
    state.counters["longest ms"] = longest;
}

void fewAreFound(benchmark::State& state) {
    typeInto(state, QStringLiteral("99.internal"));
}

void mostAreFound(benchmark::State& state) {
    typeInto(state, QStringLiteral("server"));
}

BENCHMARK(fewAreFound)->Unit(benchmark::kMillisecond)->Iterations(220);
BENCHMARK(mostAreFound)->Unit(benchmark::kMillisecond)->Iterations(220);

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
