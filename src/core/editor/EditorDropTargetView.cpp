#include "editor/EditorDropTargetView.h"

#include "platform/Scheduler.h"

#include <algorithm>

using namespace Qt::StringLiterals;

QString EditorDropTargetView::heading()
{
    return u"画像をドラッグ＆ドロップ"_s;
}

QString EditorDropTargetView::explanation()
{
    return u"または「画像を選択」から開いて編集"_s;
}

QList<EditorDropTargetView::Button> EditorDropTargetView::buttons()
{
    return {
        {u"画像を選択"_s, ButtonRole::PickFile, true, QKeySequence()},
        // Qt's Control is Command on macOS.
        {u"クリップボードから貼り付け"_s, ButtonRole::PasteImage, false, QKeySequence(Qt::CTRL | Qt::Key_V)},
        {u"キャンセル"_s, ButtonRole::Cancel, false, QKeySequence()},
    };
}

EditorDropTargetView::EditorDropTargetView(Scheduler &scheduler, QObject *parent)
    : QObject(parent), m_scheduler(scheduler)
{
}

EditorDropTargetView::Fill EditorDropTargetView::panelFill() const
{
    return m_isTargeted ? Fill{FillRole::Accent, 0.18} : Fill{FillRole::Secondary, 0.08};
}

void EditorDropTargetView::trigger(ButtonRole role)
{
    // Copies: the callback may replace the window's content and release this view.
    std::function<void()> callback;
    switch (role) {
    case ButtonRole::PickFile:
        callback = onPickFile;
        break;
    case ButtonRole::PasteImage:
        callback = onPasteImage;
        break;
    case ButtonRole::Cancel:
        callback = onCancel;
        break;
    }
    if (callback)
        callback();
}

bool EditorDropTargetView::isFile(const DropItem &item)
{
    return item.url && item.url->isValid() && item.url->isLocalFile();
}

bool EditorDropTargetView::dragEntered(const QList<DropItem> &items)
{
    const bool carriesFile = std::any_of(items.cbegin(), items.cend(), isFile);
    setTargeted(carriesFile);
    return carriesFile;
}

void EditorDropTargetView::dragExited()
{
    setTargeted(false);
}

bool EditorDropTargetView::performDrop(const QList<DropItem> &items)
{
    setTargeted(false);
    if (items.isEmpty() || !isFile(items.first()))
        return false;
    // Whether the file is an image is for the opening to find out; it has its own alert.
    m_scheduler.postToMain([open = onOpenURL, url = *items.first().url] {
        if (open)
            open(url);
    });
    return true;
}

void EditorDropTargetView::setTargeted(bool targeted)
{
    if (m_isTargeted == targeted)
        return;
    m_isTargeted = targeted;
    emit isTargetedChanged();
}
