#include "engine/text_metrics.hpp"

#include <atomic>

namespace zb {

namespace {
std::atomic<const TextMeasurer*> installed{nullptr};
}  // namespace

void installTextMeasurer(const TextMeasurer* measurer) { installed.store(measurer); }

const TextMeasurer* textMeasurer() { return installed.load(); }

}  // namespace zb
