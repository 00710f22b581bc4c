#include "app/CaptureHotKeys.h"

#include "platform/DiagnosticsLog.h"
#include "capture/CaptureCommands.h"
#include "platform/SystemLog.h"
#include "settings/AppSettings.h"

CaptureHotKeys::CaptureHotKeys(HotKeyRegistrar &registrar, const AppSettings &settings,
                               CaptureCommands &capture, DiagnosticsLog &diagnostics, SystemLog &systemLog)
    : m_registrar(registrar), m_settings(settings), m_capture(capture), m_diagnostics(diagnostics),
      m_systemLog(systemLog)
{
}

CaptureHotKeys::~CaptureHotKeys()
{
    unregisterHotKey();
}

QString CaptureHotKeys::shortcutName(quint32 id)
{
    switch (id) {
    case captureHotKeyID: return QStringLiteral("select");
    case repeatCaptureHotKeyID: return QStringLiteral("repeat");
    default: return u"hotkey-" % QString::number(id);
    }
}

QString CaptureHotKeys::shortcutDescription(quint32 id)
{
    switch (id) {
    case captureHotKeyID: return QStringLiteral("スクリーンショットを撮る");
    case repeatCaptureHotKeyID: return QStringLiteral("繰り返し撮影");
    default: return u"Vistrel " % shortcutName(id);
    }
}

void CaptureHotKeys::registerHotKey()
{
    unregisterHotKey();

    const std::optional<quint32> code = m_settings.hotKeyCode();
    if (!code) {
        // Without a capture key nothing is registered, not even the repeat shortcut.
        m_systemLog.log(QStringLiteral("Vistrel: 無効なホットキーが設定されています。"));
        return;
    }

    const HotKeyRegistrar::Result handler = m_registrar.installHandler(
        [this](std::optional<HotKeyRegistrar::Identifier> identifier) { hotKeyEventHandler(identifier); });
    if (handler.status != HotKeyRegistrar::noErr) {
        m_systemLog.log(QStringLiteral("Vistrel: イベントハンドラの登録に失敗しました: %1").arg(handler.status));
        return;
    }
    m_eventHandler = handler.handle;

    const HotKeyRegistrar::Result capture =
        m_registrar.registerHotKey(*code, m_settings.carbonModifierFlags(), {signature, captureHotKeyID});
    if (capture.status == HotKeyRegistrar::noErr)
        m_hotKeyRef = capture.handle;
    else
        m_systemLog.log(QStringLiteral("Vistrel: ホットキーの登録に失敗しました: %1").arg(capture.status));

    const std::optional<quint32> repeatCode = m_settings.repeatHotKeyCode();
    if (!repeatCode) {
        m_systemLog.log(QStringLiteral("Vistrel: 無効な繰り返し撮影ホットキーが設定されています。"));
        return;
    }
    const HotKeyRegistrar::Result repeat = m_registrar.registerHotKey(
        *repeatCode, m_settings.repeatCarbonModifierFlags(), {signature, repeatCaptureHotKeyID});
    if (repeat.status == HotKeyRegistrar::noErr)
        m_repeatHotKeyRef = repeat.handle;
    else
        m_systemLog.log(QStringLiteral("Vistrel: 繰り返し撮影ホットキーの登録に失敗しました: %1").arg(repeat.status));
}

void CaptureHotKeys::unregisterHotKey()
{
    if (m_hotKeyRef) {
        m_registrar.unregisterHotKey(*m_hotKeyRef);
        m_hotKeyRef.reset();
    }
    if (m_repeatHotKeyRef) {
        m_registrar.unregisterHotKey(*m_repeatHotKeyRef);
        m_repeatHotKeyRef.reset();
    }
    if (m_eventHandler) {
        m_registrar.removeHandler(*m_eventHandler);
        m_eventHandler.reset();
    }
}

HotKeyRegistrar::Status CaptureHotKeys::hotKeyEventHandler(std::optional<HotKeyRegistrar::Identifier> identifier)
{
    // Only the identifier decides; the signature is not compared.
    handleHotKey(identifier ? identifier->id : 0);
    return HotKeyRegistrar::noErr;
}

void CaptureHotKeys::handleHotKey(quint32 id)
{
    switch (id) {
    case captureHotKeyID:
        m_diagnostics.write(QStringLiteral("hotkey captured kind=selection"));
        m_capture.startSelection();
        break;
    case repeatCaptureHotKeyID:
        m_diagnostics.write(QStringLiteral("hotkey captured kind=repeat"));
        m_capture.captureLastSelection();
        break;
    default:
        m_diagnostics.write(u"hotkey captured kind=unknown id=" % QString::number(id));
        break;
    }
}
