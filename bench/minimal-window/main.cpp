// What any Qt program with a list in a window has to do: the yardstick for the main window.

#include <QApplication>
#include <QListView>
#include <QMainWindow>
#include <QStringList>
#include <QStringListModel>

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QStringList rows;
    for (int number = 0; number < 1000; ++number) {
        rows.append(QStringLiteral("host %1").arg(number));
    }
    QStringListModel model(rows);
    auto* list = new QListView;
    list->setUniformItemSizes(true);
    list->setModel(&model);
    QMainWindow window;
    window.setWindowTitle(QStringLiteral("Velmora"));
    window.setCentralWidget(list);
    window.resize(960, 640);
    window.show();
    return QApplication::exec();
}
