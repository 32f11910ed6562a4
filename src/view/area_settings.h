// AreaSettings: the row in which display, scale, content and object of each area are chosen, and the time
// axis.
#pragma once

#include <array>
#include <functional>

#include <QWidget>

#include "core/catalogue.h"
#include "graph/step_graph.h"
#include "modeldef/model_definition.h"

class QComboBox;

namespace corlune {

class AreaSettings : public QWidget {
  Q_OBJECT

 public:
  struct Handlers {
    // The table with one item changed; false: refused, the lists show the old choice again.
    std::function<bool(const ViewAreaTable&)> enterAreas;
    std::function<void(TimeAxis)> enterAxis;
    bool canEnterAreas = true;  // false: the areas can be looked at only
  };
  AreaSettings(const MessageCatalogue& catalogue, Handlers handlers, QWidget* parent = nullptr);

  // The choices of the definition, and those in effect.
  void ShowAreas(const ModelDefinition& definition, const ViewAreaTable& areas, TimeAxis axis);

 private:
  static constexpr std::size_t kItems = 4;

  QComboBox* AddList(TextId captionId, const char* name);
  void Fill(QComboBox* list, const TextList& choices);
  void ShowChoices();
  void Enter(std::size_t item, int choice);

  const MessageCatalogue& catalogue_;
  Handlers handlers_;
  ViewAreaTable areas_{};
  TimeAxis axis_ = TimeAxis::Time;
  QComboBox* area_;
  std::array<QComboBox*, kItems> items_{};
  QComboBox* timeAxis_;
};

}  // namespace corlune
