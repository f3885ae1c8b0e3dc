#include "ui/ForwardingTable.h"

#include "ui/ForwardingRuleRow.h"
#include "ui/HostBinding.h"
#include "ui/LinesField.h"
#include "ui/Metrics.h"

#include <QEvent>
#include <QFontDatabase>
#include <QLabel>
#include <QVBoxLayout>

#include <algorithm>
#include <iterator>
#include <utility>

namespace velmora {

namespace {

constexpr int patternLines = 4;
constexpr int patternPoints = 11;
constexpr int padding = 4;

}  // namespace

ForwardingTable::ForwardingTable(TunnelManager& manager, HostBinding& host, SelectedId& selectedId, QWidget* parent)
    : QWidget(parent),
      manager_(manager),
      host_(host),
      selectedId_(selectedId),
      noRules_(new QLabel(tr("No forwarding rules — click + to add"))),
      column_(new QVBoxLayout(this)) {
    column_->setContentsMargins(0, 0, 0, 0);
    column_->setSpacing(0);
    noRules_->setObjectName(QStringLiteral("noRules"));
    noRules_->setWordWrap(true);
    noRules_->setContentsMargins(0, 2 * padding, 0, padding);  // level with the text of a row
    noRules_->setForegroundRole(QPalette::PlaceholderText);
    column_->addWidget(noRules_);

    connect(&host_, &HostBinding::changed, this, &ForwardingTable::refresh);
    selectionChanges_ = selectedId_.observe([this] { showSelection(); });
    refresh();
}

ForwardingRuleRow* ForwardingTable::row(const Uuid& id) const {
    const auto entry =
        std::find_if(entries_.begin(), entries_.end(), [&id](const Entry& candidate) { return candidate.id == id; });
    return entry == entries_.end() ? nullptr : entry->row;
}

QWidgetList ForwardingTable::controls() const {
    QWidgetList all;
    for (const Entry& entry : entries_) {
        all.append(entry.row->controls());
        if (entry.patterns != nullptr) {
            all.append(entry.patterns);
        }
    }
    return all;
}

void ForwardingTable::refresh() {
    const auto& rules = host_.host().forwardingRules;
    bool controlsCame = replaceEntries(rules);
    for (std::size_t position = 0; position < entries_.size(); ++position) {
        entries_[position].row->showRule(rules[position]);
        controlsCame = showPatterns(entries_[position], rules[position]) || controlsCame;
    }
    noRules_->setVisible(rules.empty());
    if (controlsCame) {
        showSelection();
        Q_EMIT controlsChanged();
    }
}

/// A rule that stays keeps its row, wherever it stands now. Says whether anything came, went or moved.
bool ForwardingTable::replaceEntries(const std::vector<ForwardingRule>& rules) {
    const auto sameId = [](const Entry& entry, const ForwardingRule& rule) { return entry.id == rule.id; };
    if (std::equal(entries_.begin(), entries_.end(), rules.begin(), rules.end(), sameId)) {
        return false;
    }
    auto before = std::exchange(entries_, {});
    for (const ForwardingRule& rule : rules) {
        const auto kept = std::find_if(before.begin(), before.end(),
                                       [&rule, sameId](const Entry& entry) { return sameId(entry, rule); });
        if (kept == before.end()) {
            entries_.push_back(makeEntry(rule));
        } else {
            entries_.push_back(*kept);
            before.erase(kept);
        }
        placeAt(static_cast<int>(entries_.size()), *entries_.back().box);
    }
    for (const Entry& gone : before) {
        gone.box->hide();
        gone.box->deleteLater();  // it may be one of its own controls that brought us here
    }
    return true;
}

void ForwardingTable::placeAt(int position, QWidget& box) {
    if (column_->indexOf(&box) != position) {
        column_->removeWidget(&box);
        column_->insertWidget(position, &box);
        box.show();
    }
}

ForwardingTable::Entry ForwardingTable::makeEntry(const ForwardingRule& rule) {
    auto* box = new QWidget(this);
    auto* column = new QVBoxLayout(box);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    auto* row = new ForwardingRuleRow(
        manager_, rule, [this, box](const std::function<void(ForwardingRule&)>& change) { editRule(box, change); });
    column->addWidget(row);
    connect(row, &ForwardingRuleRow::entered, this, [this, id = rule.id] { selectedId_.set(id); });
    return {.id = rule.id, .box = box, .row = row, .patterns = nullptr};
}

bool ForwardingTable::showPatterns(Entry& entry, const ForwardingRule& rule) {
    const bool dynamic = rule.type == ForwardingType::dynamic;
    const bool made = dynamic && entry.patterns == nullptr;
    if (made) {
        addPatterns(entry);
    }
    if (entry.patterns != nullptr) {
        entry.patterns->showValue(QString::fromStdString(rule.pacPatterns));
        entry.patterns->parentWidget()->setVisible(dynamic);
    }
    return made;
}

void ForwardingTable::addPatterns(Entry& entry) {
    auto* indented = new QWidget;
    auto* around = new QVBoxLayout(indented);
    around->setContentsMargins(entry.row->indent(), 0, metrics::caption, metrics::related);
    entry.patterns = new LinesField(patternLines);
    around->addWidget(entry.patterns);
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPointSize(patternPoints);
    entry.patterns->setFont(font);
    entry.patterns->setObjectName(QStringLiteral("pacPatterns"));
    entry.patterns->setAccessibleName(tr("Proxy patterns"));
    entry.patterns->setPlaceholderText(tr("one host glob per line, e.g.") + QStringLiteral(" *.internal.example.com"));
    entry.patterns->installEventFilter(this);
    entry.box->layout()->addWidget(indented);
    connect(entry.patterns, &LinesField::edited, this, [this, box = entry.box](const QString& text) {
        editRule(box, [&text](ForwardingRule& rule) { rule.pacPatterns = text.toStdString(); });
    });
}

void ForwardingTable::editRule(const QWidget* box, const std::function<void(ForwardingRule&)>& change) {
    const auto entry =
        std::find_if(entries_.begin(), entries_.end(), [box](const Entry& candidate) { return candidate.box == box; });
    const auto position = static_cast<std::size_t>(std::distance(entries_.begin(), entry));
    host_.edit([&change, position](SSHHost& host) {
        if (position < host.forwardingRules.size()) {
            change(host.forwardingRules[position]);
        }
    });
}

void ForwardingTable::showSelection() {
    for (const Entry& entry : entries_) {
        entry.row->setSelected(selectedId_.get() == entry.id);
    }
}

/// Who is in the patterns of a rule has chosen the rule.
bool ForwardingTable::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn) {
        const auto entry = std::find_if(entries_.begin(), entries_.end(),
                                        [watched](const Entry& candidate) { return candidate.patterns == watched; });
        if (entry != entries_.end()) {
            selectedId_.set(entry->id);
        }
    }
    return QWidget::eventFilter(watched, event);
}

}  // namespace velmora
