#include "editing/sequence_editor.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "core/numbers.h"
#include "editing/param_rules.h"
#include "sequence/start_values.h"

namespace corlune {

namespace {

constexpr int kMaxSequenceNumber = 10;

}  // namespace

SequenceEditor::SequenceEditor(AppState& state, const ModelDefinition& definition, SequenceData& sequence,
                               const MessageCatalogue& catalogue, Prompts& prompts)
    : state_(state),
      definition_(definition),
      sequence_(sequence),
      catalogue_(catalogue),
      prompts_(prompts),
      views_(state, definition, sequence, catalogue) {}

bool SequenceEditor::Editable() const {
  return state_.OperationMode == OperationMode::Edit && state_.RunState == RunState::Stopped;
}

EditMessage SequenceEditor::Message(TextId id, const std::vector<std::string>& arguments) const {
  return {id, catalogue_.GetResString(id, arguments), PromptIcon::Exclamation};
}

std::string SequenceEditor::ColumnName(const CellPlace& place) const {
  std::string name = place.Area == GridArea::Sequence ? views_.ChannelHeader(place.Channel, place.Column)
                                                      : views_.CommonHeader(place.Column);
  if (place.Area == GridArea::Branch) name = views_.BranchHeader(1) + " " + std::to_string(place.BranchRow);
  std::replace(name.begin(), name.end(), '\n', ' ');
  return name;
}

EditMessage SequenceEditor::CellMessage(const EntryRefusal& refusal, const CellPlace& place) const {
  const std::string step = std::to_string(sequence_.StartStep + IndexOf(place.Row).value);
  EditMessage message = Message(TextId::StepMessage, {step, ColumnName(place), Message(refusal).Text});
  message.Id = refusal.Id;
  return message;
}

EditOutcome SequenceEditor::Finish(const std::optional<UndoSpan>& span) {
  EditOutcome outcome;
  outcome.RowColorsChanged = views_.RefreshRowColors();
  if (!span) return outcome;
  outcome.Changed = true;
  if (span->LastSlot >= span->FirstSlot) {
    outcome.FirstRow = span->FirstSlot + 1;
    outcome.LastRow = std::min(span->LastSlot + 1, std::max<int>(sequence_.StepCount, 1));
  }
  outcome.CountChanged = span->CountChanged;
  outcome.WholeWindow = span->Others;
  cursor_.CurrentRow = std::clamp<int>(cursor_.CurrentRow, 1, std::max<int>(sequence_.StepCount, 1));
  cursor_.SelEndRow = std::clamp<int>(cursor_.SelEndRow, 0, std::max<int>(sequence_.StepCount, 1));
  return outcome;
}

EditOutcome SequenceEditor::Perform(TextId action, const Change& change) {
  if (!Editable()) {
    EditOutcome nothing;
    nothing.Accepted = false;
    return nothing;
  }
  return RecordEntry(action, change);
}

EditOutcome SequenceEditor::Record(TextId action, const std::function<void()>& change) {
  return RecordEntry(action, [&change]() -> std::optional<EditMessage> {
    change();
    return std::nullopt;
  });
}

EditOutcome SequenceEditor::RecordEntry(TextId action, const Change& change) {
  history_.Synchronise(state_.Modified);
  const auto before = std::make_unique<SequenceData>(sequence_);
  if (const std::optional<EditMessage> refusal = change()) {
    sequence_ = *before;
    return EditOutcome::Refused(*refusal);
  }
  if (sequence_.Cells != before->Cells) ComputeStartValues(sequence_);
  const std::optional<UndoSpan> span =
      history_.Record(catalogue_.GetResString(action), cursor_, *before, sequence_);
  if (span) state_.Modified = true;
  return Finish(span);
}

void SequenceEditor::Restart() {
  history_.Clear();
  history_.Synchronise(state_.Modified);
  copied_.reset();
  cursor_ = GridCursor{};
  views_.Highlight(std::nullopt);
  views_.RefreshRowColors();
}

EditOutcome SequenceEditor::Undo() {
  if (!CanUndo()) return {};
  history_.Synchronise(state_.Modified);
  // What comes back is shown, wherever the person has gone since.
  cursor_ = history_.UndoCursor();
  const auto span = history_.Undo(sequence_);
  state_.Modified = !history_.AtSavedState();
  return Finish(span);
}

EditOutcome SequenceEditor::Redo() {
  if (!CanRedo()) return {};
  history_.Synchronise(state_.Modified);
  cursor_ = history_.RedoCursor();
  const auto span = history_.Redo(sequence_);
  state_.Modified = !history_.AtSavedState();
  return Finish(span);
}

std::string SequenceEditor::UndoText() const {
  const std::string word = catalogue_.GetResString(TextId::UndoWord);
  return CanUndo() ? word + ": " + history_.UndoCaption() : word;
}

std::string SequenceEditor::RedoText() const {
  const std::string word = catalogue_.GetResString(TextId::RedoWord);
  return CanRedo() ? word + ": " + history_.RedoCaption() : word;
}

bool SequenceEditor::IsEditableCell(const CellPlace& place) const {
  return !EditorFor(views_, place).None();
}

EditOutcome SequenceEditor::EnterText(const CellPlace& place, std::string_view text) {
  if (!IsEditableCell(place)) return {};
  return Perform(TextId::EditCellEntry, [&]() -> std::optional<EditMessage> {
    const int step = IndexOf(place.Row).value;
    EntryResult result;
    switch (place.Area) {
      case GridArea::Common:
        result = StoreCommonText(views_, sequence_, step, place.Column, text, EntryMode::Typed);
        break;
      case GridArea::Sequence:
        result = StoreChannelText(views_, sequence_, place.Channel, step, place.Column - 1, text,
                                  EntryMode::Typed);
        break;
      case GridArea::Branch:
        result = StoreBranchText(views_, sequence_, step, place.BranchRow, text);
        break;
    }
    if (!result) return std::nullopt;
    return Message(*result);
  });
}

EditOutcome SequenceEditor::Choose(const CellPlace& place, int index) {
  const EditorSpec editor = EditorFor(views_, place);
  if (!editor.List || index < 0 || index >= static_cast<int>(editor.Choices.size())) return {};
  return Perform(TextId::EditCellEntry, [&]() -> std::optional<EditMessage> {
    const int step = IndexOf(place.Row).value;
    const auto entry = static_cast<std::size_t>(index);
    StepRow& row = sequence_.Step(step);
    switch (place.Area) {
      case GridArea::Common:
        SetCommonValue(row, place.Column, CommonChoices(definition_, place.Column).Values[entry]);
        break;
      case GridArea::Branch:
        row.BranchStep[static_cast<std::size_t>(place.BranchRow - 1)] =
            BranchChoices(definition_).Values[entry];
        break;
      case GridArea::Sequence: {
        const StepCells before = CellsOf(sequence_, place.Channel, step);
        const int param = place.Column - 1;
        sequence_.Cell(place.Channel, step, param).Value = ChannelChoices(definition_, param).Values[entry];
        int refused = param;
        const EntryResult result =
            SettleChannelStep(views_, sequence_, place.Channel, step, before, &refused);
        if (!result) break;
        CellPlace where = place;
        where.Column = refused + 1;
        return CellMessage(*result, where);
      }
    }
    return std::nullopt;
  });
}

EditOutcome SequenceEditor::ChooseOption(const CellPlace& place, int index) {
  const EditorSpec editor = EditorFor(views_, place);
  if (index < 0 || index >= static_cast<int>(editor.Options.size())) return {};
  return Perform(TextId::EditCellEntry, [&]() -> std::optional<EditMessage> {
    const int step = IndexOf(place.Row).value;
    if (place.Area == GridArea::Common) {
      SwitchCommonValue(views_, sequence_, step, place.Column, index == kSwitchOn);
    } else {
      const int param = place.Column - 1;
      sequence_.Cell(place.Channel, step, param).ChangeMode =
          ChangeModesOf(ChannelColumn(definition_, param))[static_cast<std::size_t>(index)];
    }
    return std::nullopt;
  });
}

EditOutcome SequenceEditor::ChooseUnit(const CellPlace& place, int index) {
  const EditorSpec editor = EditorFor(views_, place);
  if (index < 0 || index >= static_cast<int>(editor.Units.size())) return {};
  return Perform(TextId::EditCellEntry, [&]() -> std::optional<EditMessage> {
    if (place.Area == GridArea::Common) {
      ChangeTimeUnit(definition_, sequence_, index);
    } else {
      ChangeColumnUnit(definition_, sequence_, place.Channel, place.Column - 1, index);
    }
    return std::nullopt;
  });
}

EditOutcome SequenceEditor::EnterField(std::string_view text, const SelectorSpec& range,
                                       std::int16_t& field) {
  const std::string plain = PlainEntry(text);
  const std::optional<double> number = ParseNumber(plain);
  if (!number || *number != std::nearbyint(*number)) return EditOutcome::Refused(Message(TextId::InputError));
  if (*number < range.Minimum || *number > range.Maximum) {
    return EditOutcome::Refused(
        Message(TextId::ValueOutOfRange,
                {plain.substr(0, 40), std::to_string(range.Minimum), std::to_string(range.Maximum)}));
  }
  EditOutcome outcome;
  const auto value = static_cast<std::int16_t>(*number);
  outcome.WholeWindow = field != value;
  field = value;
  return outcome;
}

EditOutcome SequenceEditor::EnterStartStep(std::string_view text) {
  return EnterField(text, definition_.StartStep, sequence_.StartStep);
}

EditOutcome SequenceEditor::EnterBranchChannel(std::string_view text) {
  return EnterField(text, definition_.Branch, sequence_.BranchChannel);
}

EditOutcome SequenceEditor::CheckSequenceNumber(std::string_view text) {
  SelectorSpec range;
  range.Maximum = kMaxSequenceNumber;
  std::int16_t number = 0;
  EditOutcome outcome = EnterField(text, range, number);
  outcome.WholeWindow = false;
  return outcome;
}

}  // namespace corlune
