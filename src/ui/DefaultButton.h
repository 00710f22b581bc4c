#pragma once

class QPushButton;

// Makes `button` the default button of its window, as in a dialog: drawn as the default, and pressed
// by Return or Enter wherever the focus is in that window. Qt's own default buttons work in dialogs
// only. Main thread.
namespace defaultbutton {

void bind(QPushButton *button);

} // namespace defaultbutton
