#pragma once

#include "machine/wmi/wmi_instance.h"
#include "machine/wmi/wmi_security.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace machine {

// The result of a query. If `error` is not 0, fetching objects fails with it: a semisynchronous query
// reports its errors only when objects are fetched. It is a proxy of its own: its security is set apart from
// that of the services, and until then a described machine may refuse to hand out objects.
class WmiEnumerator final : public ComObject<IEnumWbemClassObject> {
public:
    WmiEnumerator(std::shared_ptr<const WmiResult> result, std::uint32_t error, bool forward_only,
                  std::size_t position = 0);

    HRESULT STDMETHODCALLTYPE Reset() override;
    HRESULT STDMETHODCALLTYPE Next(LONG timeout, ULONG count, IWbemClassObject** objects,
                                   ULONG* returned) override;
    HRESULT STDMETHODCALLTYPE NextAsync(ULONG count, IWbemObjectSink* sink) override;
    HRESULT STDMETHODCALLTYPE Clone(IEnumWbemClassObject** copy) override;
    HRESULT STDMETHODCALLTYPE Skip(LONG timeout, ULONG count) override;

protected:
    void* Offer(REFIID iid) override;

private:
    std::uint32_t Refusal() const;
    std::optional<std::uint32_t> Break(std::size_t count) const;
    const CallErrors* errors() const { return &result_->found.errors; }
    std::size_t left() const { return result_->found.instances.size() - position_; }

    std::shared_ptr<const WmiResult> result_;
    std::uint32_t error_;
    bool forward_only_;
    std::size_t position_;
    ProxySecurity security_{*this};
};

}  // namespace machine
