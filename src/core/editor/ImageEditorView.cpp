#include "editor/ImageEditorView.h"

#include "editor/ImageEditorModel.h"

ImageEditorView::ImageEditorView(std::shared_ptr<ImageEditorModel> model, Services services, QObject *parent)
    : QObject(parent), m_model(std::move(model)), m_services(services)
{
}

ImageEditorView::~ImageEditorView() = default;

void ImageEditorView::save()
{
    // Copies: the callbacks may close the window and release this view.
    const std::function<void(const QImage &)> callback = onSave;
    const QImage image = m_model->renderEditedImage();
    if (callback)
        callback(image);
}

void ImageEditorView::cancel()
{
    const std::function<void()> callback = onCancel;
    if (callback)
        callback();
}
