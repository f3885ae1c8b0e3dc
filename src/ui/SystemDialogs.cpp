#include "ui/SystemDialogs.h"

#include "ui/ApplicationIcon.h"

#include <QApplication>
#include <QFileDialog>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QString>

#include <utility>

namespace velmora {

namespace {

constexpr int iconSide = 48;

QString text(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

/// The title bar of a file dialog is its only place for words.
QString heading(const QString& title, const QString& message) {
    return message.isEmpty() ? title : title + QStringLiteral(" — ") + message;
}

/// Names and what a server says are no markup.
void showPlainly(QMessageBox& box) {
    const auto labels = box.findChildren<QLabel*>();
    for (QLabel* label : labels) {
        label->setTextFormat(Qt::PlainText);
    }
}

/// So that a sentence is not broken into many lines, and the title can be read.
void widen(QMessageBox& box) {
    constexpr int comfortable = 380;
    if (auto* grid = qobject_cast<QGridLayout*>(box.layout())) {
        grid->addItem(new QSpacerItem(comfortable, 0), grid->rowCount(), 0, 1, grid->columnCount());
    }
}

}  // namespace

std::optional<std::filesystem::path> SystemDialogs::chooseFileToOpen(std::string_view title, std::string_view message) {
    QFileDialog dialog(QApplication::activeWindow(), heading(text(title), text(message)));
    dialog.setFileMode(QFileDialog::ExistingFile);
    return choose(dialog);
}

std::optional<std::filesystem::path> SystemDialogs::chooseFileToSave(std::string_view title,
                                                                     std::string_view suggestedName) {
    QFileDialog dialog(QApplication::activeWindow(), text(title));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.selectFile(text(suggestedName));
    return choose(dialog);
}

std::optional<std::filesystem::path> SystemDialogs::chooseFileIn(const QString& title,
                                                                 const std::filesystem::path& folder) {
    QFileDialog dialog(QApplication::activeWindow(), title, QString::fromStdString(folder.string()));
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setFilter(dialog.filter() | QDir::Hidden);  // keys live in a hidden folder
    return choose(dialog);
}

std::optional<std::filesystem::path> SystemDialogs::chooseFolder(const QString& title, const QString& message) {
    QFileDialog dialog(QApplication::activeWindow(), heading(title, message));
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    return choose(dialog);
}

void SystemDialogs::alert(const Alert& alert, std::function<void()> dismissed) {
    auto* box = new QMessageBox(QMessageBox::NoIcon, QApplication::applicationDisplayName(), alert.message,
                                QMessageBox::Ok, QApplication::activeWindow());
    box->setInformativeText(alert.informativeText);
    box->setIconPixmap(applicationIcon().pixmap(iconSide));
    if (dismissed) {
        QObject::connect(box, &QMessageBox::finished, box, [dismissed = std::move(dismissed)] { dismissed(); });
    }
    show(*box);
}

void SystemDialogs::ask(const Question& question, std::function<void(bool accepted)> answered) {
    auto* box = new QMessageBox(QMessageBox::Warning, QApplication::applicationDisplayName(), question.message,
                                QMessageBox::Cancel, QApplication::activeWindow());
    box->setInformativeText(question.informativeText);
    const QPushButton* accept = box->addButton(question.acceptButton, QMessageBox::DestructiveRole);
    box->setDefaultButton(QMessageBox::Cancel);
    box->setEscapeButton(QMessageBox::Cancel);
    QObject::connect(box, &QMessageBox::finished, box,
                     [box, accept, answered = std::move(answered)] { answered(box->clickedButton() == accept); });
    show(*box);
}

std::optional<std::filesystem::path> SystemDialogs::choose(QFileDialog& dialog) {
    policy_.activate();
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) {
        return std::nullopt;
    }
    return dialog.selectedFiles().constFirst().toStdString();
}

void SystemDialogs::show(QMessageBox& box) {
    box.setAttribute(Qt::WA_DeleteOnClose);
    showPlainly(box);
    widen(box);
    box.setWindowModality(box.parentWidget() != nullptr ? Qt::WindowModal : Qt::ApplicationModal);
    policy_.activate();
    box.show();
    box.raise();
    box.activateWindow();
}

}  // namespace velmora
