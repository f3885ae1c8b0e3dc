// One keystroke in the editor of a host, with 1,000 hosts and 4,000 patterns: until the list, the served proxy script,
// the warnings and the form are as they should be, and the field is drawn.
#include "ui/HostDetailView.h"
#include "ui/WindowStand.h"

#include <QApplication>
#include <QKeyEvent>

#include <benchmark/benchmark.h>

namespace {

using namespace velmora;

std::vector<SSHHost> thousandHosts(std::size_t rulesOfTheEdited) {
    std::vector<SSHHost> hosts;
    for (std::size_t i = 0; i < 1000; ++i) {
        const auto number = std::to_string(i);
        SSHHost host = ManagerStand::hostNamed("server " + number);
        host.hostname = "host-" + number + ".internal.example";
        ForwardingRule rule;
        rule.type = ForwardingType::dynamic;
        rule.bindPort = 21000 + static_cast<std::int64_t>(i);
        rule.pacPatterns =
            "*.zone" + number + ".example\nhost" + number + ".example\n10." + number + ".*\n*.n" + number;
        host.forwardingRules = {rule};
        hosts.push_back(std::move(host));
    }
    while (hosts[500].forwardingRules.size() < rulesOfTheEdited) {
        ForwardingRule rule;
        rule.bindPort = 8080;
        hosts[500].forwardingRules.push_back(rule);
    }
    return hosts;
}

void keystrokeIn(benchmark::State& state, const char* field, std::size_t rules) {
    WindowStand stand;
    stand.setHosts(thousandHosts(rules));
    HostDetailView view(stand.services, stand.host(500).id);
    view.resize(640, 720);
    view.show();
    QApplication::setActiveWindow(&view);
    QApplication::processEvents();
    auto* edited = view.findChild<QWidget*>(QString::fromUtf8(field));
    edited->setFocus();
    if (!edited->hasFocus()) {
        state.SkipWithError("no window");
        return;
    }
    QKeyEvent end(QEvent::KeyPress, Qt::Key_End, Qt::NoModifier);
    QApplication::sendEvent(edited, &end);
    bool back = false;
    for (auto _ : state) {
        QKeyEvent press(QEvent::KeyPress, back ? Qt::Key_Backspace : Qt::Key_1, Qt::NoModifier,
                        back ? QString() : QStringLiteral("1"));
        QApplication::sendEvent(edited, &press);
        QApplication::processEvents();
        back = !back;
    }
}

void keystrokeInName(benchmark::State& state) {
    keystrokeIn(state, "name", 1);
}
void keystrokeInPort(benchmark::State& state) {
    keystrokeIn(state, "port", 1);
}
void keystrokeInPatterns(benchmark::State& state) {
    keystrokeIn(state, "pacPatterns", 1);
}
void keystrokeAmongFiftyRules(benchmark::State& state) {
    keystrokeIn(state, "bindAddress", 50);
}

void openEditor(benchmark::State& state) {
    WindowStand stand;
    stand.setHosts(thousandHosts(static_cast<std::size_t>(state.range(0))));
    for (auto _ : state) {
        HostDetailView view(stand.services, stand.host(500).id);
        view.resize(640, 720);
        view.show();
        QApplication::processEvents();
    }
}

BENCHMARK(keystrokeInName)->Unit(benchmark::kMillisecond)->Iterations(200);
BENCHMARK(keystrokeInPort)->Unit(benchmark::kMillisecond)->Iterations(200);
BENCHMARK(keystrokeInPatterns)->Unit(benchmark::kMillisecond)->Iterations(200);
BENCHMARK(keystrokeAmongFiftyRules)->Unit(benchmark::kMillisecond)->Iterations(200);
BENCHMARK(openEditor)->Arg(1)->Arg(50)->Unit(benchmark::kMillisecond)->Iterations(20);

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
