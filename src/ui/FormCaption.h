#pragma once

class QLabel;
class QString;
class QWidget;

// The small secondary-coloured text under a setting that explains it.
namespace formcaption {

QLabel *make(const QString &text, QWidget *parent);

} // namespace formcaption
