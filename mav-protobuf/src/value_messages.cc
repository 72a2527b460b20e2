// The two-field value messages: ComplexFloat, ComplexDouble and ChronoData.
// Their whole behaviour is the scalar-pair frame; this file compiles it.

#include "frames.h"

namespace Tarnwick {
namespace MavProtobuf {

template class internal::MessageFrame<ComplexFloat>;
template class internal::ScalarPairFrame<ComplexFloat, float, float>;

template class internal::MessageFrame<ComplexDouble>;
template class internal::ScalarPairFrame<ComplexDouble, double, double>;

template class internal::MessageFrame<ChronoData>;
template class internal::ScalarPairFrame<ChronoData, int64_t, uint64_t>;

}  // namespace MavProtobuf
}  // namespace Tarnwick
