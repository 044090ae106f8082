#pragma once

#include <QString>

namespace knjige::test
{

// Points the per-user settings store at a throwaway folder for the whole test run,
// so tests never read or write a developer's real settings.
void sandboxSettings();
// Removes every setting written so far (between tests that check defaults).
void clearSettings();
// A fresh folder for files a test writes; removed when the run ends.
QString scratchDir();

} // namespace knjige::test
