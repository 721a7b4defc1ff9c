#pragma once
// An ordered list of owned child nodes. The tree hands out raw pointers to its nodes; they stay
// valid until the node is removed from its list or the list dies.

#include <algorithm>
#include <memory>
#include <vector>

template <class T> class OwnedList {
public:
    int Size() const { return static_cast<int>(m_items.size()); }
    bool Empty() const { return m_items.empty(); }
    T* At(int index) const { return m_items.at(static_cast<size_t>(index)).get(); }

    // A copy of the list as raw pointers; the nodes stay owned here.
    std::vector<T*> Pointers() const {
        std::vector<T*> out;
        out.reserve(m_items.size());
        for (const auto& item : m_items)
            out.push_back(item.get());
        return out;
    }

    // The first node with this id, or null.
    T* FindById(int id) const {
        for (const auto& item : m_items)
            if (item->GetId() == id)
                return item.get();
        return nullptr;
    }
    // Position of the first node with this id, or Size() when there is none.
    int IndexOf(int id) const {
        for (int i = 0; i < Size(); ++i)
            if (m_items[static_cast<size_t>(i)]->GetId() == id)
                return i;
        return Size();
    }

    T* Append(std::unique_ptr<T> item) {
        m_items.push_back(std::move(item));
        return m_items.back().get();
    }
    T* Insert(int index, std::unique_ptr<T> item) {
        auto it = m_items.insert(m_items.begin() + index, std::move(item));
        return it->get();
    }
    // Removes the node at the index and hands it to the caller.
    std::unique_ptr<T> Take(int index) {
        auto it = m_items.begin() + index;
        std::unique_ptr<T> item = std::move(*it);
        m_items.erase(it);
        return item;
    }
    template <class Pred> void RemoveIf(Pred pred) {
        m_items.erase(std::remove_if(m_items.begin(), m_items.end(),
                                     [&](const std::unique_ptr<T>& item) { return pred(*item); }),
                      m_items.end());
    }
    // Removes every node whose id is in the set, keeping the order of the rest.
    template <class Ids> void RemoveIds(const Ids& ids) {
        RemoveIf([&](const T& item) { return ids.count(item.GetId()) > 0; });
    }
    void Swap(int a, int b) { std::swap(m_items.at(a), m_items.at(b)); }
    void Clear() { m_items.clear(); }
    // Empties the list without destroying the nodes: whoever holds their pointers owns them.
    void ReleaseAll() {
        for (auto& item : m_items)
            (void)item.release();
        m_items.clear();
    }

    auto begin() const { return m_items.begin(); }
    auto end() const { return m_items.end(); }

private:
    std::vector<std::unique_ptr<T>> m_items;
};
