#pragma once

class QPlainTextEdit;
class QWidget;

/// Finds text in whichever window has some to search.
namespace velmora::TextFinderSupport {

/// The first text view among the children of this view and theirs, depth first; null when there is none.
[[nodiscard]] QPlainTextEdit* findTextView(const QWidget& view);

/// Gives the focus to the text view of this content, and opens the find bar that stands in the same content.
void showFindInterface(const QWidget& contentView);

}  // namespace velmora::TextFinderSupport
