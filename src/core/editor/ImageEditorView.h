#pragma once

#include <QImage>
#include <QObject>

#include <functional>
#include <memory>

class ImageEditorModel;
class Scheduler;
class SystemLog;

// The editor of one document, as the widgets of an editor window see it. Main thread only.
class ImageEditorView final : public QObject
{
    Q_OBJECT

public:
    struct Services
    {
        SystemLog &systemLog;
        Scheduler &scheduler;
    };

    ImageEditorView(std::shared_ptr<ImageEditorModel> model, Services services, QObject *parent = nullptr);
    ~ImageEditorView() override;

    ImageEditorModel &model() const { return *m_model; }
    const std::shared_ptr<ImageEditorModel> &sharedModel() const { return m_model; }

    // Given the flattened picture ("決定").
    std::function<void(const QImage &image)> onSave;
    std::function<void()> onCancel;

    // "決定": the flattened picture, or the unedited one when flattening fails.
    void save();
    // "キャンセル".
    void cancel();

private:
    std::shared_ptr<ImageEditorModel> m_model;
    Services m_services;
};
