#include "view/area_settings.h"

#include <algorithm>
#include <utility>

#include <QComboBox>
#include <QLabel>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "graph/graph_picture.h"
#include "view/flow_layout.h"

namespace corlune {

namespace {

constexpr std::size_t kTimeAxisList = 4;  // VS_SELCT4
constexpr int kSpacing = 8;

}  // namespace

AreaSettings::AreaSettings(const MessageCatalogue& catalogue, Handlers handlers, QWidget* parent)
    : QWidget(parent), catalogue_(catalogue), handlers_(std::move(handlers)) {
  setLayout(new FlowLayout(nullptr, kSpacing));
  area_ = AddList(TextId::AreaField, "CmbArea");
  for (int i = 0; i < kViewAreas; ++i) {
    area_->addItem(QString::fromStdString(catalogue.GetResString(Next(TextId::ViewArea1, i))));
  }
  connect(area_, &QComboBox::activated, this, [this] { ShowChoices(); });
  constexpr std::array<const char*, kItems> kNames{"CmbDisplay", "CmbScale", "CmbContent", "CmbObject"};
  for (std::size_t i = 0; i < kItems; ++i) {
    items_[i] = AddList(Next(TextId::ViewDisplaySetting, static_cast<int>(i)), kNames[i]);
    items_[i]->setEnabled(handlers_.canEnterAreas);
    connect(items_[i], &QComboBox::activated, this, [this, i](int choice) { Enter(i, choice); });
  }
  timeAxis_ = AddList(TextId::TimeAxisField, "CmbTimeAxis");
  connect(timeAxis_, &QComboBox::activated, this, [this](int choice) {
    axis_ = choice == 1 ? TimeAxis::Steps : TimeAxis::Time;
    handlers_.enterAxis(axis_);
  });
}

QComboBox* AreaSettings::AddList(TextId captionId, const char* name) {
  auto* group = new QWidget(this);
  auto* rows = new QVBoxLayout(group);
  rows->setContentsMargins(0, 0, 0, 0);
  rows->setSpacing(1);
  auto* list = new QComboBox(group);
  list->setObjectName(QString::fromUtf8(name));
  list->setSizeAdjustPolicy(QComboBox::AdjustToContents);
  auto* label = new QLabel(QString::fromStdString(catalogue_.GetResString(captionId)), group);
  label->setBuddy(list);
  list->setAccessibleName(label->text());
  rows->addWidget(label);
  rows->addWidget(list);
  layout()->addWidget(group);
  return list;
}

void AreaSettings::Fill(QComboBox* list, const TextList& choices) {
  QStringList texts;
  for (const std::string& choice : choices.Texts) {
    texts.append(QString::fromStdString(ChoiceText(catalogue_, choice)));
  }
  QStringList shown;
  for (int i = 0; i < list->count(); ++i) shown.append(list->itemText(i));
  if (texts == shown) return;
  const QSignalBlocker quiet(list);
  list->clear();
  list->addItems(texts);
}

void AreaSettings::ShowAreas(const ModelDefinition& definition, const ViewAreaTable& areas, TimeAxis axis) {
  areas_ = areas;
  axis_ = axis;
  for (std::size_t i = 0; i < kItems; ++i) Fill(items_[i], definition.ViewSelections[i]);
  Fill(timeAxis_, definition.ViewSelections[kTimeAxisList]);
  ShowChoices();
}

void AreaSettings::ShowChoices() {
  const auto& area = areas_[static_cast<std::size_t>(std::max(area_->currentIndex(), 0))];
  for (std::size_t i = 0; i < kItems; ++i) {
    // A choice that the model does not offer shows as none.
    items_[i]->setCurrentIndex(area[i] < items_[i]->count() ? area[i] : -1);
  }
  timeAxis_->setCurrentIndex(static_cast<int>(axis_));
}

void AreaSettings::Enter(std::size_t item, int choice) {
  ViewAreaTable wanted = areas_;
  wanted[static_cast<std::size_t>(area_->currentIndex())][item] = static_cast<std::int16_t>(choice);
  if (wanted != areas_ && handlers_.enterAreas(wanted)) areas_ = wanted;
  ShowChoices();
}

}  // namespace corlune
