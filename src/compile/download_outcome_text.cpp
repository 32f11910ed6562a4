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
      return catalogue.GetResString(9201, {"1"});
    case DownloadEnd::InstrumentError:
      return catalogue.GetResString(9525, {std::to_string(outcome.ErrorNumber)});
    case DownloadEnd::ReplyUnreadable:
      return catalogue.GetResString(9780);
    case DownloadEnd::NotCompiled:
      return catalogue.GetResString(9526);
  }
  return {};
}

}  // namespace corlune
