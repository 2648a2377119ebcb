// The order of the exit statuses, and domains that are joined once.
#include "zulctl/session.h"

#include <algorithm>
#include <new>

namespace zul::ctl {

std::string wordsOf(const std::exception& failure) {
    return dynamic_cast<const std::bad_alloc*>(&failure) != nullptr ? "out of memory" : failure.what();
}

void Outcome::add(fleet::Status status) {
    constexpr int STATUSES[] = {EXIT_DONE, EXIT_REFUSED, EXIT_NOT_FOUND, EXIT_NO_ANSWER, EXIT_INTERRUPTED};
    add(STATUSES[static_cast<std::size_t>(status)]);
}

int Outcome::status() const {
    constexpr int ORDER[] = {EXIT_INTERRUPTED, EXIT_USAGE, EXIT_NO_ANSWER, EXIT_REFUSED, EXIT_NOT_FOUND};
    const auto* first =
        std::ranges::find_if(ORDER, [this](int each) { return seen_.test(static_cast<std::size_t>(each)); });
    return first != std::end(ORDER) ? *first : EXIT_DONE;
}

std::unique_ptr<fleet::Domain> join(std::int32_t id, std::span<const fleet::Product> products,
                                    fleet::Wakeup& wakeup) {
    std::string error;
    auto domain = fleet::Domain::join(id, products, wakeup, error);
    if (domain == nullptr) {
        throw Failure{EXIT_CANNOT_JOIN, error};
    }
    return domain;
}

fleet::Domain& Session::domain(std::int32_t id, fleet::Product product) {
    const fleet::Product key = isLasting_ ? fleet::PRODUCTS[0] : product;
    std::unique_ptr<fleet::Domain>& domain = domains_[{id, key}];
    if (domain == nullptr) {
        const std::span<const fleet::Product> one(&product, 1);
        domain = join(id, isLasting_ ? fleet::PRODUCTS : one, wakeup_);
    }
    return *domain;
}

fleet::Domain* Session::known(std::int32_t id) const {
    const auto found = domains_.find({id, fleet::PRODUCTS[0]});
    return isLasting_ && found != domains_.end() ? found->second.get() : nullptr;
}

} // namespace zul::ctl
