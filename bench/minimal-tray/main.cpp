// What any Qt program with a status icon has to do: the yardstick for start-up.

#include <QApplication>
#include <QMenu>
#include <QPainter>
#include <QPixmap>
#include <QSystemTrayIcon>

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);

    QPixmap pixmap(22, 22);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.drawEllipse(3, 3, 16, 16);
    painter.end();

    QMenu menu;
    QObject::connect(menu.addAction(QStringLiteral("Quit")), &QAction::triggered, &application, &QApplication::quit);
    QSystemTrayIcon icon{QIcon(pixmap)};
    icon.setContextMenu(&menu);
    icon.show();
    return QApplication::exec();
}
