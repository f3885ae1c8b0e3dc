#pragma once

#include "base/Uuid.h"

#include <QListView>
#include <QString>

#include <cstdint>
#include <utility>
#include <vector>

namespace velmora {

class HostListModel;

/// The list of hosts itself: what mouse and keys mean in it, and where it is scrolled to. Main thread.
class HostListView final : public QListView {
    Q_OBJECT

public:
    enum class Scroll : std::uint8_t { never, toSelected };

    /// The model outlives the view, or is let go of by `setModel`.
    explicit HostListView(HostListModel& model, QWidget* parent = nullptr);

    /// Stands in the middle while there are no rows.
    void setEmptyText(const QString& text);

    /// Makes this the one selected row; none of them for -1.
    void select(int row, Scroll scroll);

    /// Takes over what the manager knows now. What is in sight stays where it is, as far as it is still there; the
    /// upper end stays the upper end. Tells whether rows came, went or moved.
    bool refresh();

Q_SIGNALS:
    /// The second of two clicks on a row, and no later one; or Return.
    void toggleRequested();
    void deleteRequested(const QModelIndex& index);
    void menuRequested(const QModelIndex& index, const QPoint& globalPosition);

private:
    /// The rows in sight and how far each is below the upper edge, in pixels. Empty at the upper end.
    using Place = std::vector<std::pair<Uuid, int>>;

    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void countClick(const QMouseEvent& event);
    [[nodiscard]] Place place() const;
    void restorePlace(const Place& place);

    HostListModel& hosts_;
    QString emptyText_;
    int clicks_ = 0;  ///< in a row, at one place
    std::uint64_t lastClickTime_ = 0;
    QPoint lastClickPosition_;
};

}  // namespace velmora
