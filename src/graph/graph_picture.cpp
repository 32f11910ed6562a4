#include "graph/graph_picture.h"

#include <algorithm>

#include "core/numbers.h"
#include "core/step_numbering.h"
#include "editing/param_rules.h"
#include "sequence/units.h"
#include "sequence/user_units.h"

namespace corlune {

namespace {

constexpr double kMsPerSecond = 1000;

std::string UnitOf(const SequenceData& sequence, const ModelDefinition& definition, int channel, int slot) {
  return UserUnits(sequence, definition).UnitText(channel, slot);
}

std::string WithUnit(const std::string& text, const std::string& unit) {
  return unit.empty() ? text : text + " " + unit;
}

std::string InBrackets(const std::string& text, const std::string& unit) {
  return unit.empty() ? text : text + " [" + unit + "]";
}

// The axis and its times are in seconds, whatever unit the step times are typed in.
std::string StepTimeUnit(const ModelDefinition& definition) {
  const ParamDef& time = TimeColumn(definition);
  return time.UnitKind == 1 ? time.UnitName : "s";
}

std::string ListText(const TextList& list, int index) {
  if (index < 0 || static_cast<std::size_t>(index) >= list.Texts.size()) return {};
  return list.Texts[static_cast<std::size_t>(index)];
}

void AddTexts(const SequenceData& sequence, const ModelDefinition& definition,
              const MessageCatalogue& catalogue, AreaPicture& picture) {
  const GraphArea& area = picture.Graph.Area;
  const std::string target = ListText(definition.ViewSelections[kAreaTarget], area.Target);
  const std::string content =
      ChoiceText(catalogue, ListText(definition.ViewSelections[kAreaContent], area.Content));
  picture.Title = catalogue.GetResString(Next(TextId::ViewArea1, area.Number));
  for (const std::string& part : {target, content}) {
    if (!part.empty()) picture.Title += "  " + part;
  }
  if (picture.Graph.Curves.empty()) {
    picture.Note = catalogue.GetResString(TextId::GraphNoData, {target.empty() ? picture.Title : target});
    return;
  }
  const auto empty = [](const GraphCurve& curve) { return curve.Points.empty(); };
  const auto& curves = picture.Graph.Curves;
  if (picture.Graph.Envelope.empty() && std::all_of(curves.begin(), curves.end(), empty)) {
    picture.Note = catalogue.GetResString(TextId::GraphParameterUnused);
    return;
  }
  if (!picture.Graph.Envelope.empty()) {
    picture.Legends.push_back(InBrackets(catalogue.GetResString(TextId::ChoiceEnvelope),
                                         UnitOf(sequence, definition, area.Channel, kSlotOffset)));
  }
  bool lists = true;
  for (const GraphCurve& curve : picture.Graph.Curves) {
    picture.Legends.push_back(ParameterText(sequence, definition, area.Channel, curve.Slot));
    lists = lists && ChannelColumn(definition, curve.Slot).ValueKind == 2;
  }
  if (lists) picture.Choices = ChannelChoices(definition, picture.Graph.Curves.front().Slot).Texts;
}

void AddLoops(const SequenceData& sequence, const ModelDefinition& definition,
              const MessageCatalogue& catalogue, GraphPicture& picture) {
  const std::vector<LoopBracket> brackets = NestLoops(LoopsOf(sequence));
  picture.LoopRows = LoopRows(brackets);
  for (const LoopBracket& bracket : brackets) {
    std::string text = "...";
    if (bracket.Loops == 1) {
      text = bracket.Endless ? catalogue.GetResString(TextId::LoopSignEndless)
                             : catalogue.GetResString(TextId::LoopSignTimes, {std::to_string(bracket.Count)});
    }
    picture.Loops.push_back(
        {bracket, std::move(text), bracket.Endless ? definition.EndlessSequence : definition.LoopSequence});
  }
}

std::string ValueText(const SequenceData& sequence, const ModelDefinition& definition, int channel, int step,
                      int slot, double stored) {
  const ChoiceList choices = ChannelChoices(definition, slot);
  const int index = choices.IndexOf(ToInt16(stored).value_or(-1));
  if (index >= 0) return choices.Texts[static_cast<std::size_t>(index)];
  return UserUnits(sequence, definition).UserUnitText(stored, channel, step, slot);
}

}  // namespace

std::string ChoiceText(const MessageCatalogue& catalogue, const std::string& choice) {
  const MessageCatalogue english(10000);
  constexpr int kChoices = static_cast<int>(TextId::ChoiceOn) - static_cast<int>(TextId::ChoiceAuto) + 1;
  for (int i = 0; i < kChoices; ++i) {
    const TextId id = Next(TextId::ChoiceAuto, i);
    if (english.GetResString(id) == choice) return catalogue.GetResString(id);
  }
  return choice;
}

std::string ParameterText(const SequenceData& sequence, const ModelDefinition& definition, int channel,
                          int slot) {
  return InBrackets(ChannelColumn(definition, slot).Name, UnitOf(sequence, definition, channel, slot));
}

GraphPicture BuildGraphPicture(const SequenceData& sequence, const ModelDefinition& definition,
                               const MessageCatalogue& catalogue, const PictureWish& wish) {
  GraphPicture picture;
  picture.Axis = wish.Axis;
  picture.Spans = StepSpans(sequence, definition, wish.Axis, wish.Length);
  picture.AxisTitle = catalogue.GetResString(TextId::TimeAxisTitle, {StepTimeUnit(definition)});
  if (picture.Spans.empty()) {
    picture.Note = catalogue.GetResString(TextId::GraphNoSteps);
    return picture;
  }
  for (std::size_t i = 0; i < picture.Spans.size(); ++i) {
    const StepNumber number = NumberOf(StepIndex{static_cast<int>(i)});
    picture.StepLabels.push_back(std::to_string(ShownNumber(number, sequence.StartStep)));
  }
  AddLoops(sequence, definition, catalogue, picture);
  if (definition.ReferenceFlag) {
    picture.ReferenceLine = ParseNumber(definition.ReferenceText);
    picture.ReferenceText = definition.ReferenceText;
  }
  for (const GraphArea& area : GraphAreas(sequence, definition, wish.Channels)) {
    AreaPicture added;
    added.Graph = BuildAreaGraph(sequence, definition, area, picture.Spans);
    AddTexts(sequence, definition, catalogue, added);
    picture.Areas.push_back(std::move(added));
  }
  return picture;
}

std::string GraphTip(const SequenceData& sequence, const ModelDefinition& definition,
                     const MessageCatalogue& catalogue, const GraphPicture& picture, std::size_t area,
                     int step) {
  const auto index = static_cast<std::size_t>(step);
  if (area >= picture.Areas.size() || step < 0 || index >= picture.Spans.size() ||
      step >= sequence.StepCount) {
    return {};
  }
  const StepSpan& span = picture.Spans[index];
  const std::string time =
      WithUnit(NumberText((span.EndTime - span.StartTime) / kMsPerSecond), StepTimeUnit(definition));
  std::string tip = catalogue.GetResString(TextId::GraphTipStep, {picture.StepLabels[index], time});
  const GraphArea& drawn = picture.Areas[area].Graph.Area;
  if (drawn.Channel < 0) return tip;
  for (const int slot : ContentSlots(definition, drawn.Content)) {
    const std::string& name = ChannelColumn(definition, slot).Name;
    tip += '\n';
    if (!ChannelInUse(definition, sequence, drawn.Channel, step, slot)) {
      tip += catalogue.GetResString(TextId::GraphTipUnused, {name});
      continue;
    }
    const StepValue stored = StoredValue(definition, slot, sequence.Cell(drawn.Channel, step, slot));
    const std::string unit = UnitOf(sequence, definition, drawn.Channel, slot);
    const auto text = [&](double value) {
      return ValueText(sequence, definition, drawn.Channel, step, slot, value);
    };
    if (stored.From == stored.To) {
      tip += catalogue.GetResString(TextId::GraphTipConstant, {name, WithUnit(text(stored.To), unit)});
    } else {
      tip += catalogue.GetResString(TextId::GraphTipRamp,
                                    {name, text(stored.From), WithUnit(text(stored.To), unit)});
    }
  }
  return tip;
}

std::string LoopTipText(const MessageCatalogue& catalogue, const GraphPicture& picture,
                        const LoopBracket& bracket) {
  const std::string& first = picture.StepLabels[static_cast<std::size_t>(bracket.First)];
  const std::string& last = picture.StepLabels[static_cast<std::size_t>(bracket.Last)];
  if (bracket.Loops > 1) return first + " - " + last;
  if (bracket.Endless) return catalogue.GetResString(TextId::LoopEndless, {first, last});
  if (bracket.Count == 1) return catalogue.GetResString(TextId::LoopOnce, {first, last});
  return catalogue.GetResString(
      TextId::LoopTimes, {first, last, std::to_string(bracket.Count), std::to_string(bracket.Count + 1)});
}

}  // namespace corlune
