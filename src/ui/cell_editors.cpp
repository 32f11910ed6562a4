#include "ui/cell_editors.h"

#include <algorithm>

#include <QAbstractScrollArea>
#include <QAccessible>
#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>

#include "ui/grid_model.h"
#include "view/entry_field.h"

namespace corlune {

namespace {

constexpr std::size_t kSwitchOptions = 3;  // OptModeSet4 and 5 come after the three of the change modes

std::size_t IndexOfArea(GridArea area) {
  return static_cast<std::size_t>(area) - 1;
}

void GiveTo(QWidget& editor, QWidget* viewport) {
  if (editor.parentWidget() != viewport) editor.setParent(viewport);
}

}  // namespace

CellEditors::CellEditors(const std::array<QWidget*, 3>& viewports, QObject* parent) : QObject(parent) {
  constexpr std::array<const char*, 3> kTexts{"Text1", "Text2", "Text3"};
  constexpr std::array<const char*, 3> kCombos{"Combo1", "Combo2", "Combo3"};
  constexpr std::array<const char*, 5> kOptions{"OptModeSet1", "OptModeSet2", "OptModeSet3", "OptModeSet4",
                                                "OptModeSet5"};
  for (std::size_t i = 0; i < texts_.size(); ++i) {
    auto* text = new QLineEdit(viewports[i]);
    texts_[i] = text;
    text->setObjectName(QLatin1String(kTexts[i]));
    text->setFocusPolicy(Qt::ClickFocus);
    text->setContextMenuPolicy(Qt::NoContextMenu);
    text->setInputMethodHints(Qt::ImhPreferNumbers | Qt::ImhNoPredictiveText | Qt::ImhNoAutoUppercase);
    text->hide();
    text->installEventFilter(this);

    auto* combo = new CellCombo(kCombos[i], viewports[i]);
    combos_[i] = combo;
    combo->installEventFilter(this);
    connect(combo, &QComboBox::activated, this, [this](int index) {
      if (!open_) return;
      if (spec_.List) {
        emit Chosen(index);
      } else {
        emit UnitChosen(index);
      }
    });
  }
  for (std::size_t i = 0; i < options_.size(); ++i) {
    const bool ofChannel = i < kSwitchOptions;
    options_[i] = new CellOption(kOptions[i],
                                 viewports[IndexOfArea(ofChannel ? GridArea::Sequence : GridArea::Common)]);
    options_[i]->installEventFilter(this);
    const int index = static_cast<int>(ofChannel ? i : i - kSwitchOptions);
    connect(options_[i], &QRadioButton::clicked, this, [this, index] {
      if (open_) emit OptionChosen(index);
    });
  }
}

QLineEdit& CellEditors::TextOf(GridArea area) const {
  return *texts_[IndexOfArea(area)];
}

CellCombo& CellEditors::ComboOf(GridArea area) const {
  return *combos_[IndexOfArea(area)];
}

std::vector<CellOption*> CellEditors::OptionsOf(GridArea area) const {
  if (area == GridArea::Sequence) return {options_.begin(), options_.begin() + kSwitchOptions};
  if (area == GridArea::Common) return {options_.begin() + kSwitchOptions, options_.end()};
  return {};
}

void CellEditors::FillText() {
  QLineEdit& text = TextOf(place_.Area);
  original_ = QString::fromStdString(spec_.TextValue);
  text.setText(original_);
  text.setEnabled(spec_.TextEnabled);
  text.setAlignment(Qt::AlignRight);
  if (spec_.TextEnabled) text.selectAll();
}

void CellEditors::FillList(CellCombo& combo, const std::vector<std::string>& texts, int chosen) {
  QStringList entries;
  for (const std::string& text : texts) entries << QString::fromStdString(text);
  QStringList present;
  for (int i = 0; i < combo.count(); ++i) present << combo.itemText(i);
  if (entries != present) {
    combo.clear();
    combo.addItems(entries);
  }
  combo.setCurrentIndex(chosen);
}

void CellEditors::FillOptions() {
  const std::vector<CellOption*> options = OptionsOf(place_.Area);
  for (std::size_t i = 0; i < std::min(options.size(), spec_.Options.size()); ++i) {
    CellOption& option = *options[i];
    GiveTo(option, viewport_);
    option.Offer(spec_.Options[i]);
    // Exclusive buttons cannot be taken back one by one.
    option.setAutoExclusive(false);
    option.setChecked(static_cast<int>(i) == spec_.ChosenOption);
    option.setAutoExclusive(true);
  }
}

void CellEditors::Open(QAbstractScrollArea& grid, const QRect& cell, const CellPlace& place,
                       const EditorSpec& spec, const QString& name) {
  const std::vector<QWidget*> before = open_ ? Shown() : std::vector<QWidget*>{};
  viewport_ = grid.viewport();
  place_ = place;
  spec_ = spec;
  inText_ = false;
  dragging_ = false;
  open_ = true;
  if (spec_.Text) {
    GiveTo(TextOf(place.Area), viewport_);
    FillText();
  }
  if (spec_.List || !spec_.Units.empty()) {
    CellCombo& combo = ComboOf(place.Area);
    GiveTo(combo, viewport_);
    combo.ChooseAtOnce(!spec_.List);
    combo.setToolTip(QString::fromStdString(spec_.UnitTitle));
    FillList(combo, spec_.List ? spec_.Choices : spec_.Units, spec_.List ? spec_.Chosen : spec_.ChosenUnit);
  }
  FillOptions();
  Place(cell);
  const std::vector<QWidget*> now = Shown();
  for (QWidget* editor : now) {
    const auto* option = qobject_cast<const CellOption*>(editor);
    editor->setAccessibleName(option != nullptr ? name + QStringLiteral(": ") + option->text() : name);
    // X11 tools are told the entry as the name of a list.
    if (qobject_cast<const QComboBox*>(editor) != nullptr) editor->setAccessibleDescription(name);
    editor->show();
    editor->raise();
  }
  // The new editor takes the focus over before the old one, which has it, disappears.
  const bool hadFocus =
      std::any_of(before.begin(), before.end(), [](QWidget* old) { return old->hasFocus(); });
  if (hadFocus) Focus();
  for (QWidget* old : before) {
    if (std::find(now.begin(), now.end(), old) == now.end()) old->hide();
  }
}

void CellEditors::Place(const QRect& cell) {
  if (!open_) return;
  cell_ = cell;
  std::vector<QWidget*> stacked = Shown();
  QWidget* main = spec_.Text ? static_cast<QWidget*>(&TextOf(place_.Area)) : &ComboOf(place_.Area);
  stacked.erase(std::remove(stacked.begin(), stacked.end(), main), stacked.end());

  QRect over = cell;
  if (spec_.List) {
    over.setWidth(std::max(cell.width(), main->minimumSizeHint().width()));
    // The last columns have no room to the right.
    if (over.right() >= viewport_->width() && cell.right() < viewport_->width()) {
      over.moveRight(std::max(viewport_->width() - 1, cell.right()));
    }
  }
  main->setGeometry(over);

  int width = cell.width();
  for (const QWidget* editor : stacked) width = std::max(width, editor->sizeHint().width());
  std::vector<QSize> sizes;
  sizes.reserve(stacked.size());
  for (const QWidget* editor : stacked) sizes.emplace_back(width, editor->sizeHint().height());
  const std::vector<QRect> places = StackAtCell(cell, viewport_->size(), sizes);
  for (std::size_t i = 0; i < stacked.size(); ++i) stacked[i]->setGeometry(places[i]);
}

std::vector<QWidget*> CellEditors::Shown() const {
  std::vector<QWidget*> shown;
  if (spec_.Text) shown.push_back(&TextOf(place_.Area));
  if (spec_.List || !spec_.Units.empty()) shown.push_back(&ComboOf(place_.Area));
  const std::vector<CellOption*> options = OptionsOf(place_.Area);
  const std::size_t count = std::min(options.size(), spec_.Options.size());
  shown.insert(shown.end(), options.begin(), options.begin() + static_cast<std::ptrdiff_t>(count));
  return shown;
}

void CellEditors::Close() {
  if (!open_) return;
  open_ = false;
  inText_ = false;
  for (QWidget* editor : Shown()) editor->hide();
}

bool CellEditors::Changed() const {
  if (!open_) return false;
  if (spec_.List) return ComboOf(place_.Area).currentIndex() != spec_.Chosen;
  return spec_.TextEnabled && TextOf(place_.Area).text() != original_;
}

QString CellEditors::Text() const {
  return TextOf(place_.Area).text();
}

int CellEditors::Choice() const {
  return ComboOf(place_.Area).currentIndex();
}

QWidget* CellEditors::Main() const {
  if (spec_.List) return &ComboOf(place_.Area);
  if (spec_.TextEnabled || spec_.Options.empty()) return &TextOf(place_.Area);
  const std::vector<CellOption*> options = OptionsOf(place_.Area);
  return options[static_cast<std::size_t>(
      std::clamp(spec_.ChosenOption, 0, static_cast<int>(spec_.Options.size()) - 1))];
}

void CellEditors::Focus() {
  if (!open_) return;
  const bool stays = Main()->hasFocus();
  Main()->setFocus(Qt::OtherFocusReason);
  // The cursor has moved with the editor, which assistive tools take for the same control as before.
  if (stays && QAccessible::isActive()) {
    QAccessibleEvent event(Main(), QAccessible::Focus);
    QAccessible::updateAccessibility(&event);
  }
}

bool CellEditors::HasFocus() const {
  const QWidget* focus = viewport_ != nullptr ? viewport_->window()->focusWidget() : nullptr;
  return open_ && Owns(focus);
}

bool CellEditors::Owns(const QObject* widget) const {
  const auto is = [&](const QWidget* editor) { return editor == widget; };
  return std::any_of(texts_.begin(), texts_.end(), is) || std::any_of(combos_.begin(), combos_.end(), is) ||
         std::any_of(options_.begin(), options_.end(), is);
}

void CellEditors::EditText() {
  if (!open_ || !spec_.Text || !spec_.TextEnabled) return;
  QLineEdit& text = TextOf(place_.Area);
  text.setFocus(Qt::OtherFocusReason);
  text.deselect();
  text.end(false);
  inText_ = true;
}

void CellEditors::Restore() {
  if (!open_) return;
  inText_ = false;
  if (spec_.Text) FillText();
  if (spec_.List) ComboOf(place_.Area).setCurrentIndex(spec_.Chosen);
  if (!spec_.Units.empty()) ComboOf(place_.Area).setCurrentIndex(spec_.ChosenUnit);
  FillOptions();
}

void CellEditors::OpenList() {
  if (open_ && (spec_.List || !spec_.Units.empty())) ComboOf(place_.Area).showPopup();
}

int CellEditors::RowHeight() const {
  return combos_[0]->sizeHint().height();
}

bool CellEditors::TextMouse(QEvent* event) {
  const auto* mouse = static_cast<QMouseEvent*>(event);
  const QLineEdit& text = TextOf(place_.Area);
  switch (event->type()) {
    case QEvent::MouseButtonPress:
      dragging_ = false;
      return false;
    case QEvent::MouseMove:
      // An untouched editor is the cell itself: dragging selects cells.
      if (!mouse->buttons().testFlag(Qt::LeftButton) || Changed() || inText_) return false;
      if (!dragging_ && text.rect().contains(mouse->position().toPoint())) return true;
      dragging_ = true;
      emit DraggedTo(mouse->globalPosition().toPoint());
      return true;
    case QEvent::MouseButtonRelease:
      if (mouse->button() != Qt::LeftButton) return false;
      if (std::exchange(dragging_, false)) {
        emit DragEnded();
        return true;
      }
      inText_ = true;
      return false;
    default:
      return false;
  }
}

bool CellEditors::eventFilter(QObject* watched, QEvent* event) {
  if (!open_) return QObject::eventFilter(watched, event);
  switch (event->type()) {
    case QEvent::ShortcutOverride:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
      if (keyHandler_ && keyHandler_(static_cast<QKeyEvent*>(event))) {
        event->accept();
        return true;
      }
      // A letter for a menu that does not exist is no text either.
      if (event->type() == QEvent::KeyPress && IsMenuLetter(*static_cast<QKeyEvent*>(event))) return true;
      break;
    case QEvent::FocusIn:
      // The menu bar has taken the selection away: the next digit would be added to the value.
      if (spec_.Text && watched == &TextOf(place_.Area) && !inText_ && !Changed()) {
        TextOf(place_.Area).selectAll();
      }
      break;
    case QEvent::MouseButtonPress:
    case QEvent::MouseMove:
    case QEvent::MouseButtonRelease:
      if (spec_.Text && watched == &TextOf(place_.Area) && TextMouse(event)) return true;
      break;
    default:
      break;
  }
  return QObject::eventFilter(watched, event);
}

std::vector<QRect> StackAtCell(const QRect& cell, const QSize& viewport, const std::vector<QSize>& sizes) {
  int height = 0;
  int width = 0;
  for (const QSize& size : sizes) {
    height += size.height();
    width = std::max(width, size.width());
  }
  const int below = viewport.height() - cell.bottom() - 1;
  const int above = cell.top();
  int left = std::max(std::min(cell.left(), viewport.width() - width), 0);
  int top = cell.bottom() + 1;
  if (height > below && height <= above) {
    top = cell.top() - height;
  } else if (height > below) {
    top = std::max(viewport.height() - height, 0);
    left = cell.right() + 1 + width <= viewport.width() ? cell.right() + 1 : cell.left() - width;
  }
  std::vector<QRect> places;
  places.reserve(sizes.size());
  for (const QSize& size : sizes) {
    places.emplace_back(QPoint(left, top), size);
    top += size.height();
  }
  return places;
}

}  // namespace corlune
