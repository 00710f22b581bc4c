#pragma once

#include "platform/EditorWindow.h"

#include <QStringList>

// Records what the window manager did with the window; the test closes it the way a user would.
class FakeEditorWindow : public EditorWindow
{
public:
    explicit FakeEditorWindow(const Configuration &configuration, QStringList *journal = nullptr)
        : configuration(configuration), contentSize(configuration.contentSize),
          minimumSize(configuration.minimumSize), m_journal(journal)
    {
    }

    void setContent(const EditorRootView &newContent) override
    {
        content = newContent;
        ++contentChanges;
        record(QStringLiteral("setContent"));
    }
    void setContentSize(QSizeF size) override { contentSize = size; }
    void setMinimumSize(QSizeF size) override { minimumSize = size; }
    void center() override { ++centerCount; }
    void makeKeyAndOrderFront() override
    {
        isVisible = true;
        ++orderFrontCount;
        record(QStringLiteral("makeKeyAndOrderFront"));
    }
    void close() override
    {
        isVisible = false;
        ++closeCount;
        record(QStringLiteral("close"));
        windowWillClose();
    }

    // The close button of the title bar.
    void userCloses() { close(); }

    template<typename View>
    std::shared_ptr<View> contentAs() const
    {
        const auto *view = std::get_if<std::shared_ptr<View>>(&content);
        return view ? *view : nullptr;
    }

    Configuration configuration;
    EditorRootView content;
    QSizeF contentSize;
    QSizeF minimumSize;
    bool isVisible = false;
    int contentChanges = 0;
    int centerCount = 0;
    int orderFrontCount = 0;
    int closeCount = 0;

private:
    void record(const QString &call)
    {
        if (m_journal)
            m_journal->append(u"window." + call);
    }
    QStringList *m_journal;
};
