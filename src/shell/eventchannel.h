#pragma once
// The channel on which features tell each other what happened: typed events, published by
// one feature and observed by any other, so that no feature holds another's functions.

#include <functional>
#include <map>
#include <typeindex>
#include <vector>

namespace zifora::shell {

class EventChannel {
  public:
    /// Calls `observer` for every event of type `E` published from now on.
    template <typename E> void subscribe(std::function<void(const E&)> observer) {
        m_observers[std::type_index(typeid(E))].push_back(
            [o = std::move(observer)](const void* event) { o(*static_cast<const E*>(event)); });
    }

    /// Hands `event` to every observer of its type, in the order they subscribed.
    template <typename E> void publish(const E& event) const {
        auto it = m_observers.find(std::type_index(typeid(E)));
        if (it == m_observers.end()) return;
        // An observer may subscribe others; they hear the next event.
        const auto observers = it->second;
        for (const auto& observer : observers)
            observer(&event);
    }

  private:
    std::map<std::type_index, std::vector<std::function<void(const void*)>>> m_observers;
};

} // namespace zifora::shell
