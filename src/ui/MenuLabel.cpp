#include "ui/MenuLabel.h"

#include <QCoreApplication>
#include <QTextBoundaryFinder>

#include <algorithm>
#include <utility>

namespace velmora {

namespace {

constexpr qsizetype longestLabel = 64;  // UTF-16 units; a menu wider than that leaves small screens

bool breaksLine(QChar character) {
    switch (character.category()) {
        case QChar::Other_Control:
        case QChar::Separator_Line:
        case QChar::Separator_Paragraph:
            return true;
        default:
            return false;
    }
}

/// Never parts what is seen as one character.
QString cutInTheMiddle(const QString& text) {
    if (text.size() <= longestLabel) {
        return text;
    }
    QTextBoundaryFinder characters(QTextBoundaryFinder::Grapheme, text);
    constexpr qsizetype half = (longestLabel - 1) / 2;
    const auto boundaryFrom = [&characters](qsizetype position, auto step) {
        characters.setPosition(position);
        return characters.isAtBoundary() ? position : (characters.*step)();
    };
    const qsizetype head = boundaryFrom(half, &QTextBoundaryFinder::toPreviousBoundary);
    const qsizetype tail = boundaryFrom(text.size() - half, &QTextBoundaryFinder::toNextBoundary);
    return text.left(head) + QChar(0x2026) + text.mid(tail);
}

/// Qt turns the first "&" of an exported label into "_", unless it ends the label, and leaves the rest alone. So that
/// no ampersand of the name is taken, one of our own comes first and marks a character without width.
QString exportedLabel(QString label) {
    label.replace(QLatin1Char('_'), QLatin1String("__"));
    const qsizetype ampersand = label.indexOf(QLatin1Char('&'));
    if (ampersand < 0 || ampersand == label.size() - 1) {
        return label;
    }
    const QChar wordJoiner(0x2060);
    return QLatin1Char('&') + (wordJoiner + label);
}

}  // namespace

QString oneLine(std::string_view text) {
    QString line = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    std::replace_if(line.begin(), line.end(), breaksLine, QLatin1Char(' '));
    return line.trimmed();
}

QString displayName(std::string_view name) {
    const QString line = oneLine(name);
    return line.isEmpty() ? QCoreApplication::translate("velmora::MenuLabel", "Unnamed") : line;
}

QString menuLabel(std::string_view name, MenuText drawnAs) {
    QString label = cutInTheMiddle(displayName(name));
    if (drawnAs == MenuText::exported) {
        return exportedLabel(std::move(label));
    }
    label.replace(QLatin1Char('&'), QLatin1String("&&"));
    return label;
}

}  // namespace velmora
