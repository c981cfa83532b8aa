#include "compare/comparison_writer.h"

#include "compare/row_labels.h"

namespace trvtrout {

void ComparisonWriter::title(std::string_view title) {
  std::string row = ",";
  ((row += title) += primary_name_) += "),,,,,";
  ((row += title) += secondary_name_) += ')';
  out_.line(row);
}

std::string_view ComparisonWriter::label(RowForm form) {
  constexpr std::string_view kLabels[] = {"", kOriginalLabel, kChangedLabel, kDeletedLabel, kAddedLabel};
  return kLabels[static_cast<std::size_t>(form)];
}

void ComparisonWriter::count(RowForm form) {
  switch (form) {
    case RowForm::kUnchanged:
      ++counts_.unchanged;
      break;
    case RowForm::kOriginal:
      ++counts_.changed;
      break;
    case RowForm::kChanged:
      break;
    case RowForm::kDeleted:
      ++counts_.deleted;
      break;
    case RowForm::kAdded:
      ++counts_.added;
      break;
  }
}

}  // namespace trvtrout
