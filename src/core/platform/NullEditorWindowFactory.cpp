#include "platform/NullEditorWindowFactory.h"

#include "platform/DiagnosticsLog.h"
#include "geometry/TraceFormat.h"

using namespace Qt::StringLiterals;

namespace {

class NullEditorWindow final : public EditorWindow
{
public:
    void setContent(const EditorRootView &) override {}
    void setContentSize(QSizeF) override {}
    void setMinimumSize(QSizeF) override {}
    void center() override {}
    void makeKeyAndOrderFront() override {}
    void close() override { windowWillClose(); }
};

} // namespace

std::unique_ptr<EditorWindow> NullEditorWindowFactory::makeEditorWindow(const EditorWindow::Configuration &configuration)
{
    m_diagnostics.write(u"editor window not shown: this platform set has no editor windows (size "_s
                        % trace::size(configuration.contentSize) % u')');
    return std::make_unique<NullEditorWindow>();
}
