#pragma once

#include "platform/ScreenCapturer.h"

#include <QColor>
#include <QList>
#include <QStringList>

// Completes every request at once, on the calling thread. Unless a test scripted otherwise, the display
// list is what `shareable` holds and every capture succeeds with an image of the requested size
// (display capture) or of the rectangle's size in points (rectangle capture).
class FakeScreenCapturer final : public ScreenCapturer
{
public:
    struct Outcome
    {
        QImage image;
        std::optional<QString> error;
    };
    struct DisplayCall
    {
        quint32 displayID;
        Rect sourceRect;
        QSize outputSize;
    };

    explicit FakeScreenCapturer(QStringList *journal = nullptr) : m_journal(journal) {}

    void shareableDisplays(ContentCompletion completion) override
    {
        record(QStringLiteral("capturer.shareableDisplays"));
        completion(shareableError ? std::nullopt : shareable, shareableError);
    }
    void captureDisplay(quint32 displayID, const Rect &sourceRect, QSize outputSize,
                        ImageCompletion completion) override
    {
        record(QStringLiteral("capturer.captureDisplay"));
        displayCalls.append({displayID, sourceRect, outputSize});
        if (!displayOutcomes.isEmpty()) {
            const Outcome outcome = displayOutcomes.takeFirst();
            completion(outcome.image, outcome.error);
            return;
        }
        completion(filled(outputSize), std::nullopt);
    }
    void captureRect(const Rect &globalRect, ImageCompletion completion) override
    {
        record(QStringLiteral("capturer.captureRect"));
        rectCalls.append(globalRect);
        if (!rectOutcomes.isEmpty()) {
            const Outcome outcome = rectOutcomes.takeFirst();
            completion(outcome.image, outcome.error);
            return;
        }
        completion(filled(globalRect.size().toSize()), std::nullopt);
    }

    static QImage filled(QSize size, QColor color = QColor(90, 90, 90))
    {
        QImage image(size, QImage::Format_RGB32);
        image.fill(color);
        return image;
    }

    std::optional<QList<ShareableDisplay>> shareable = QList<ShareableDisplay>();
    std::optional<QString> shareableError;
    // Taken one per call, in order; an empty queue means success.
    QList<Outcome> displayOutcomes;
    QList<Outcome> rectOutcomes;
    QList<DisplayCall> displayCalls;
    QList<Rect> rectCalls;

private:
    void record(const QString &call)
    {
        if (m_journal)
            m_journal->append(call);
    }
    QStringList *m_journal;
};
