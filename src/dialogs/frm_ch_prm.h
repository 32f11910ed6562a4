// FrmChPrm: output load and user units of the channels, with an example of how a value reads.
#pragma once

#include "dialogs/form_dialog.h"
#include "forms/channel_form.h"

class QGroupBox;

namespace corlune {

class FrmChPrm : public FormDialog {
  Q_OBJECT

 public:
  // Edits `form`, which must outlive the dialog, and shows what is selected there. `changeable`: false shows
  // the values only.
  FrmChPrm(const MessageCatalogue& catalogue, Prompts& prompts, ChannelForm& form, bool changeable,
           QWidget* parent = nullptr);

 private:
  void BuildChannel();
  void BuildUserUnit();
  // A field that stores with `enter`.
  EntryField* MakeEntry(const char* name, FieldKind kind, EntryResult (ChannelForm::*enter)(std::string_view),
                        TextId hint);
  // A list that stores with `choose`.
  QComboBox* MakeChoice(const char* name, const std::vector<TextId>& choices,
                        void (ChannelForm::*choose)(int));
  void ShowAll();
  void ShowExample();

  ChannelForm& form_;
  QComboBox* channel_ = nullptr;
  QComboBox* loadType_ = nullptr;
  EntryField* load_ = nullptr;
  QComboBox* quantity_ = nullptr;
  QComboBox* use_ = nullptr;
  EntryField* unit_ = nullptr;
  QComboBox* formula_ = nullptr;
  EntryField* factor_ = nullptr;
  EntryField* summand_ = nullptr;
  QLabel* example_ = nullptr;
};

}  // namespace corlune
