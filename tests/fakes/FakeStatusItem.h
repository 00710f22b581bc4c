#pragma once

#include "platform/StatusItem.h"

class FakeStatusItem final : public StatusItem
{
public:
    explicit FakeStatusItem(QStringList *journal = nullptr) : m_journal(journal) {}

    void show(const Appearance &shownAppearance, ClickHandler handler) override
    {
        appearance = shownAppearance;
        onClick = std::move(handler);
        if (m_journal)
            m_journal->append(QStringLiteral("statusItem.show"));
    }
    void setMenu(const QList<MenuEntry> &, ActionHandler handler) override { onAction = std::move(handler); }
    void setToggleChecked(bool checked) override { toggleChecked = checked; }
    void popUpMenu() override
    {
        ++popUpCount;
        // What the user sees is the check mark at the moment the menu opens.
        checkedWhenLastShown = toggleChecked;
    }

    bool isShownToUser() const override { return shownToUser; }

    Appearance appearance;
    bool shownToUser = true;
    ClickHandler onClick;
    ActionHandler onAction;
    bool toggleChecked = false;
    bool checkedWhenLastShown = false;
    int popUpCount = 0;

private:
    QStringList *m_journal;
};
