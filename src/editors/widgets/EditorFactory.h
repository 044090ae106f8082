#pragma once

#include "editors/widgets/RecordEditor.h"

#include <memory>

namespace knjige
{

// The record editor of a book kind, created fresh with the kind already set; nullptr
// for a code that is not a book. Every editor lives for one operation.
std::unique_ptr<RecordEditor> createEditor(int bookKind, QWidget* parent = nullptr);

} // namespace knjige
