#include "dialogs/frm_arb_memory.h"

#include <QComboBox>
#include <QFormLayout>

#include "sequence/sequence_data.h"

namespace corlune {

FrmArbMemory::FrmArbMemory(const MessageCatalogue& catalogue, Prompts& prompts,
                           const QStringList& instruments, QWidget* parent)
    : FormDialog(catalogue, prompts,
                 {"FrmArbMemory", TextId::ArbMemoryTitle, TextId::ArbMemoryClear, TextId::ArbMemoryCancel},
                 parent) {
  QFormLayout& rows = *AddRows();
  AddRow(rows, TextId::ArbMemoryDevice,
         {MakeList("cmbDevice", instruments, [this](int choice) { instrument_ = choice; })});
  QStringList numbers{Caption(TextId::ArbAllNumbers)};
  for (int number = 1; number <= kArbNumbers; ++number) numbers << QString::number(number);
  AddRow(rows, TextId::ArbMemoryNumber,
         {MakeList("cmbNumber", numbers, [this](int choice) { number_ = choice; })});
  Body().addStretch();
}

}  // namespace corlune
