#include "compile/download_outcome_text.h"

namespace corlune {

std::string DownloadOutcomeText(const DownloadOutcome& outcome, const MessageCatalogue& catalogue) {
  switch (outcome.End) {
    case DownloadEnd::Done:
    case DownloadEnd::UnderWay:
    case DownloadEnd::Cancelled:
    case DownloadEnd::NoName:
      return {};
    case DownloadEnd::Refused:
      return outcome.Detail;
    case DownloadEnd::NotSent:
      return catalogue.GetResString(TextId::CommunicationError, {"1"});
    case DownloadEnd::InstrumentError:
      return catalogue.GetResString(TextId::DownloadErrorNumber, {std::to_string(outcome.ErrorNumber)});
    case DownloadEnd::ReplyUnreadable:
      return catalogue.GetResString(TextId::DownloadReplyUnreadable);
    case DownloadEnd::NotCompiled:
      return catalogue.GetResString(TextId::DownloadNotTaken);
  }
  return {};
}

}  // namespace corlune
