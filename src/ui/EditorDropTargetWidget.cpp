#include "EditorDropTargetWidget.h"

#include "DefaultButton.h"
#include "SymbolIcons.h"

#include "editor/EditorDropTargetView.h"

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QMimeData>
#include <QPainter>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>

namespace {

QList<EditorDropTargetView::DropItem> dropItems(const QMimeData *data)
{
    QList<EditorDropTargetView::DropItem> items;
    if (!data)
        return items;
    if (!data->hasUrls()) {
        // Text or a bare image: one item without a URL, which the view refuses.
        if (!data->formats().isEmpty())
            items.append({std::nullopt});
        return items;
    }
    for (const QUrl &url : data->urls())
        items.append({url});
    return items;
}

QLabel *makeLabel(const QString &text, QWidget *parent)
{
    auto *label = new QLabel(text, parent);
    label->setAlignment(Qt::AlignCenter);
    label->setWordWrap(true);
    return label;
}

} // namespace

EditorDropTargetWidget::EditorDropTargetWidget(std::shared_ptr<EditorDropTargetView> view, QWidget *parent)
    : QWidget(parent), m_view(std::move(view))
{
    setAcceptDrops(true);
    setFocusPolicy(Qt::StrongFocus);
    const QColor secondary = palette().color(QPalette::PlaceholderText);

    auto *symbol = new QLabel(this);
    const int symbolSize = int(EditorDropTargetView::symbolPointSize);
    QImage drawn = symbolicons::renderPhotoSymbol(symbolSize * 2, secondary);
    drawn.setDevicePixelRatio(2);
    symbol->setPixmap(QPixmap::fromImage(drawn));
    symbol->setAlignment(Qt::AlignCenter);

    QLabel *heading = makeLabel(EditorDropTargetView::heading(), this);
    QFont headingFont = heading->font();
    headingFont.setPointSizeF(headingFont.pointSizeF() * 1.5);
    headingFont.setWeight(QFont::DemiBold);
    heading->setFont(headingFont);
    QLabel *explanation = makeLabel(EditorDropTargetView::explanation(), this);
    QPalette explanationPalette = explanation->palette();
    explanationPalette.setColor(QPalette::WindowText, secondary);
    explanation->setPalette(explanationPalette);

    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    for (const EditorDropTargetView::Button &entry : EditorDropTargetView::buttons()) {
        auto *button = new QPushButton(entry.title, this);
        const EditorDropTargetView::ButtonRole role = entry.role;
        connect(button, &QPushButton::clicked, this, [this, role] { m_view->trigger(role); });
        if (entry.isDefault)
            defaultbutton::bind(button);
        if (!entry.shortcut.isEmpty()) {
            auto *shortcut = new QShortcut(entry.shortcut, this);
            shortcut->setContext(Qt::WindowShortcut);
            connect(shortcut, &QShortcut::activated, this, [this, role] { m_view->trigger(role); });
        }
        buttons->addWidget(button);
    }
    buttons->addStretch();

    auto *stack = new QVBoxLayout(this);
    const int inset = int(EditorDropTargetView::panelInset);
    stack->setContentsMargins(inset, inset, inset, inset);
    stack->setSpacing(int(EditorDropTargetView::stackSpacing));
    stack->addStretch();
    stack->addWidget(symbol);
    stack->addWidget(heading);
    stack->addWidget(explanation);
    stack->addLayout(buttons);
    stack->addStretch();

    connect(m_view.get(), &EditorDropTargetView::isTargetedChanged, this, qOverload<>(&QWidget::update));
}

EditorDropTargetWidget::~EditorDropTargetWidget() = default;

QColor EditorDropTargetWidget::panelColor() const
{
    const EditorDropTargetView::Fill fill = m_view->panelFill();
    QColor color = fill.role == EditorDropTargetView::FillRole::Accent ? palette().color(QPalette::Highlight)
                                                                       : palette().color(QPalette::PlaceholderText);
    color.setAlphaF(float(color.alphaF() * fill.opacity));
    return color;
}

QRectF EditorDropTargetWidget::panelRect() const
{
    const double inset = EditorDropTargetView::panelInset;
    return QRectF(rect()).adjusted(inset, inset, -inset, -inset);
}

void EditorDropTargetWidget::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(panelColor());
    const double radius = EditorDropTargetView::panelCornerRadius;
    painter.drawRoundedRect(panelRect(), radius, radius);
}

void EditorDropTargetWidget::dragEnterEvent(QDragEnterEvent *event)
{
    if (m_view->dragEntered(dropItems(event->mimeData())))
        event->acceptProposedAction();
    else
        event->ignore();
}

void EditorDropTargetWidget::dragMoveEvent(QDragMoveEvent *event)
{
    if (m_view->isTargeted())
        event->acceptProposedAction();
    else
        event->ignore();
}

void EditorDropTargetWidget::dragLeaveEvent(QDragLeaveEvent *)
{
    m_view->dragExited();
}

void EditorDropTargetWidget::dropEvent(QDropEvent *event)
{
    if (m_view->performDrop(dropItems(event->mimeData())))
        event->acceptProposedAction();
    else
        event->ignore();
}
