#pragma once

class QLineEdit;
class QWidget;

namespace knjige
{

// Selects the whole text of an input field, from the start; editors call it when a
// field gains focus so that typing replaces the old value.
void SelektirajTekst(QLineEdit* field);
// Does the same on every focus-in of every line edit below `root` (date and number
// boxes included), so a form gets the behaviour with one call.
void selectWholeTextOnFocus(QWidget* root);

} // namespace knjige
