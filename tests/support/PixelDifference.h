#pragma once

class QImage;

namespace testsupport {
// The largest difference of any colour channel between two pictures of the same size: what two ways
// of painting the same thing may differ by in rounding.
int largestChannelDifference(const QImage &a, const QImage &b);
} // namespace testsupport
