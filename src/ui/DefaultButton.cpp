#include "DefaultButton.h"

#include <QPushButton>
#include <QShortcut>

namespace defaultbutton {

void bind(QPushButton *button)
{
    button->setDefault(true);
    for (const QKeySequence &key : {QKeySequence(Qt::Key_Return), QKeySequence(Qt::KeypadModifier | Qt::Key_Enter)}) {
        // Parented to the button: active while it is shown in the active window, gone with it.
        auto *shortcut = new QShortcut(key, button);
        shortcut->setContext(Qt::WindowShortcut);
        QObject::connect(shortcut, &QShortcut::activated, button, [button] {
            if (button->isEnabled())
                button->click();
        });
    }
}

} // namespace defaultbutton
