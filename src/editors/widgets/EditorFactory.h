#pragma once

#include "editors/widgets/RecordEditor.h"

#include <memory>

namespace knjige::editors
{

// The record editor of a book kind, created fresh with the kind already set; nullptr
// for a code that is not a book. Every editor lives for one operation.
std::unique_ptr<RecordEditor> createEditor(int bookKind, QWidget* parent = nullptr);

// What the browser sets on every editor it opens, whatever the mode: the RS turnover
// book books its second amount to an account, and the RS records have no income and
// expense book to link to.
void pripremiEditor(RecordEditor& e, int bookKind);

} // namespace knjige::editors
