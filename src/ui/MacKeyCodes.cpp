#include "MacKeyCodes.h"

#include "settings/KeyTable.h"

#include <QChar>
#include <QString>

namespace mackeycodes {

std::optional<int> fromQtKey(int qtKey)
{
    switch (qtKey) {
    case Qt::Key_Escape: return 53;
    case Qt::Key_Space: return 49;
    case Qt::Key_Return: return 36;
    case Qt::Key_Enter: return 76;
    case Qt::Key_Tab: return 48;
    case Qt::Key_Backspace: return 51;
    case Qt::Key_Delete: return 117;
    case Qt::Key_Left: return 123;
    case Qt::Key_Right: return 124;
    case Qt::Key_Down: return 125;
    case Qt::Key_Up: return 126;
    default: break;
    }
    // Letters, digits and punctuation carry their Latin-1 character as Qt's key number.
    if (qtKey > 0x20 && qtKey < 0x7f) {
        if (const std::optional<quint32> code = keytable::keyCode(QString(QChar(qtKey)).toUpper()))
            return int(*code);
    }
    return std::nullopt;
}

} // namespace mackeycodes
