#pragma once

#include <QString>
#include <QTextDocument>

namespace velmora {

/// The document's text with LF between lines, each character at its position in the document. Unlike
/// QTextDocument::toPlainText() it keeps no-break spaces.
[[nodiscard]] QString plainText(const QTextDocument& document);

}  // namespace velmora
