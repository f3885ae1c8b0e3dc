// The editor of the proxy script with scripts of half a megabyte to two: until a text is there, in colours and without;
// one pass of colouring; a keystroke; a keystroke in the find bar.
#include "ui/FindBar.h"
#include "ui/PacTextEditor.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>

#include <benchmark/benchmark.h>

#include <memory>

namespace {

using namespace velmora;

QString script(qsizetype size) {
    QString text = QStringLiteral("function FindProxyForURL(url, host) {\n");
    for (int i = 0; text.size() < size; ++i) {
        text += QStringLiteral(
                    "    if (shExpMatch(host, \"*.zone%1.example\")) return \"SOCKS5 127.0.0.1:%2; SOCKS "
                    "127.0.0.1:%2; DIRECT\"; // server %1\n")
                    .arg(i)
                    .arg(21000 + i % 1000);
    }
    return text + QStringLiteral("    return \"DIRECT\";\n}");
}

struct Window {
    explicit Window(bool highlight) {
        editor.setHighlight(highlight);
        editor.resize(760, 560);
        editor.show();
        QApplication::processEvents();
    }
    PacTextEditor editor;
};

void press(QWidget& widget, Qt::Key key, const QString& text = {}) {
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, text);
    QApplication::sendEvent(&widget, &event);
}

/// Until the text is on the screen. The difference of the two is what colours cost.
void open(benchmark::State& state, bool highlight) {
    const QString text = script(state.range(0));
    for (auto _ : state) {
        state.PauseTiming();
        auto window = std::make_unique<Window>(highlight);
        state.ResumeTiming();
        window->editor.setText(text);
        window->editor.repaint();
        state.PauseTiming();
        window.reset();
        state.ResumeTiming();
    }
    state.SetComplexityN(state.range(0));
}

/// The whole text gets other colours, as when the desktop turns dark.
void recolor(benchmark::State& state) {
    Window window(true);
    window.editor.setText(script(state.range(0)));
    QPalette light = window.editor.palette();
    QPalette dark = light;
    dark.setColor(QPalette::Base, Qt::black);
    bool isDark = false;
    for (auto _ : state) {
        isDark = !isDark;
        window.editor.setPalette(isDark ? dark : light);
        window.editor.repaint();
    }
    state.SetComplexityN(state.range(0));
}

void keystroke(benchmark::State& state) {
    Window window(true);
    window.editor.setText(script(state.range(0)));
    for (auto _ : state) {
        press(window.editor, Qt::Key_X, QStringLiteral("x"));
        window.editor.repaint();
    }
    state.SetComplexityN(state.range(0));
}

/// Every keystroke changes the colour of all that follows.
void openingComment(benchmark::State& state) {
    Window window(true);
    window.editor.setText(script(state.range(0)) + QStringLiteral("*/"));
    press(window.editor, Qt::Key_Slash, QStringLiteral("/"));
    for (auto _ : state) {
        press(window.editor, Qt::Key_Asterisk, QStringLiteral("*"));
        press(window.editor, Qt::Key_Backspace);
        window.editor.repaint();
    }
    state.SetComplexityN(state.range(0));
}

void find(benchmark::State& state, const char* pattern) {
    Window window(true);
    window.editor.setText(script(state.range(0)));
    FindBar bar(window.editor);
    bar.open();
    auto* field = bar.findChild<QLineEdit*>();
    const QString text = QString::fromUtf8(pattern);
    field->setText(text.chopped(1));
    bar.findNext();
    for (auto _ : state) {
        field->end(false);
        press(*field, Qt::Key_X, text.right(1));
        window.editor.repaint();
        state.PauseTiming();
        press(*field, Qt::Key_Backspace);
        state.ResumeTiming();
    }
    state.SetComplexityN(state.range(0));
}

void sizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->Unit(benchmark::kMillisecond)->Arg(500'000)->Arg(1'000'000)->Arg(2'000'000);
}

BENCHMARK_CAPTURE(open, plain, false)->Apply(sizes)->Complexity(benchmark::oN);
BENCHMARK_CAPTURE(open, colored, true)->Apply(sizes)->Complexity(benchmark::oN);
BENCHMARK(recolor)->Apply(sizes)->Complexity(benchmark::oN);
BENCHMARK(keystroke)->Apply(sizes);
BENCHMARK(openingComment)->Apply(sizes);
BENCHMARK_CAPTURE(find, one_letter, "e")->Apply(sizes);
BENCHMARK_CAPTURE(find, a_word, "server")->Apply(sizes);
BENCHMARK_CAPTURE(find, nothing, "nowhere")->Apply(sizes);

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
