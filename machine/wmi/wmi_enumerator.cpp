#include "machine/wmi/wmi_enumerator.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace machine {
namespace {

constexpr std::uint32_t kFalse = 1;                      // WBEM_S_FALSE
constexpr std::uint32_t kTimedOut = 0x00040004;          // WBEM_S_TIMEDOUT
constexpr std::uint32_t kInvalidParameter = 0x80041008;  // WBEM_E_INVALID_PARAMETER
constexpr std::uint32_t kInvalidOperation = 0x80041016;  // WBEM_E_INVALID_OPERATION

void ReleaseAll(std::vector<IWbemClassObject*>& objects) {
    for (IWbemClassObject* object : objects) {
        object->Release();
    }
    objects.clear();
}

}  // namespace

WmiEnumerator::WmiEnumerator(std::shared_ptr<const WmiResult> result, std::uint32_t error, bool forward_only,
                             std::size_t position)
    : ComObject(IID_IEnumWbemClassObject),
      result_(std::move(result)),
      error_(error),
      forward_only_(forward_only),
      position_(position) {}

void* WmiEnumerator::Offer(REFIID iid) {
    if (IsEqualIID(iid, IID_IClientSecurity)) {
        return static_cast<IClientSecurity*>(&security_);
    }
    return ComObject::Offer(iid);
}

// The error of fetching objects; 0 if there is none.
std::uint32_t WmiEnumerator::Refusal() const {
    const Simulation* simulation = Simulation::Current();
    const std::uint32_t refusal = simulation == nullptr ? 0 : simulation->machine().enumerator_refusal;
    return refusal != 0 && !security_.is_set() ? refusal : error_;
}

// The error of moving on by `count` objects on a described class whose list breaks off before that.
std::optional<std::uint32_t> WmiEnumerator::Break(std::size_t count) const {
    return position_ + count > result_->found.whole_objects ? result_->found.break_error : std::nullopt;
}

HRESULT STDMETHODCALLTYPE WmiEnumerator::Reset() {
    return PerformCom("IEnumWbemClassObject::Reset", result_->class_name, errors(), [&] {
        if (forward_only_) {
            return Answer::Failure(kInvalidOperation);
        }
        position_ = 0;
        return Answer{};
    });
}

HRESULT STDMETHODCALLTYPE WmiEnumerator::Next(LONG timeout, ULONG count, IWbemClassObject** objects,
                                              ULONG* returned) {
    if (objects == nullptr || returned == nullptr) {
        return AsHresult(kInvalidParameter);
    }
    *returned = 0;
    std::fill_n(objects, count, nullptr);
    std::vector<IWbemClassObject*> found;
    const HRESULT result = PerformCom("IEnumWbemClassObject::Next", result_->class_name, errors(), [&] {
        if (const std::uint32_t refusal = Refusal(); refusal != 0) {
            return Answer::Failure(refusal);
        }
        // Objects arrive only for an infinite timeout; with any other timeout the call times out.
        if (timeout != static_cast<LONG>(WBEM_INFINITE)) {
            Answer late;
            late.error = kTimedOut;
            return late;
        }
        if (const std::optional<std::uint32_t> broken = Break(count)) {
            return Answer::Failure(*broken);
        }
        const std::size_t given = std::min<std::size_t>(count, left());
        found.reserve(given);
        for (std::size_t i = 0; i < given; ++i) {
            found.push_back(new WmiInstanceObject(result_, position_ + i));
        }
        position_ += given;
        Answer answer;
        answer.returned = given;
        answer.error = given < count ? kFalse : 0;
        return answer;
    });
    if (FAILED(result)) {
        ReleaseAll(found);
    }
    std::copy(found.begin(), found.end(), objects);
    *returned = static_cast<ULONG>(found.size());
    return result;
}

HRESULT STDMETHODCALLTYPE WmiEnumerator::NextAsync(ULONG /*count*/, IWbemObjectSink* /*sink*/) {
    return kWmiNotSupported;
}

HRESULT STDMETHODCALLTYPE WmiEnumerator::Clone(IEnumWbemClassObject** copy) {
    if (copy == nullptr) {
        return AsHresult(kInvalidParameter);
    }
    *copy = nullptr;
    return PerformCom("IEnumWbemClassObject::Clone", result_->class_name, errors(), [&] {
        *copy = new WmiEnumerator(result_, error_, forward_only_, position_);
        return Answer{};
    });
}

HRESULT STDMETHODCALLTYPE WmiEnumerator::Skip(LONG /*timeout*/, ULONG count) {
    return PerformCom("IEnumWbemClassObject::Skip", result_->class_name, errors(), [&] {
        if (const std::uint32_t refusal = Refusal(); refusal != 0) {
            return Answer::Failure(refusal);
        }
        if (const std::optional<std::uint32_t> broken = Break(count)) {
            return Answer::Failure(*broken);
        }
        Answer answer;
        answer.error = left() < count ? kFalse : 0;
        position_ += std::min<std::size_t>(count, left());
        return answer;
    });
}

}  // namespace machine
