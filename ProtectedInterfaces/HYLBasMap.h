/// \file
/// The typed ordered map, with the member names of a standard map.
///
/// Take it for values by `int` key in increasing order of keys. It is a `HYLBasTreeGeneric` with
/// typed names: one block of the memory library's general heap per element, and elements keep
/// their address, and positions stay valid, until they are erased. Lookups, steps and the way to a
/// key's place are inline; everything else is one call into the library. `docs/maps.md` says when
/// another map is faster.
///
/// It differs from `std::map` mainly in these points: keys are `int`; counts are 32 bits; iterators
/// only step forward, by `++it`; exhausted memory ends the process unless a new handler finds some
/// or throws; `Insert` and `InsertOver` take key and value and say whether an existing value is
/// kept or replaced; assignment and exchange take the end position along.
///
/// No argument is checked. An iterator given to `erase` or as a hint must belong to the map, and
/// that of `erase` must not be `end()`. One thread at a time per map.
#pragma once

#include <cstddef>
#include <type_traits>

#include "HYLBasComparitor.h"
#include "HYLBasNodeAllocator.h"
#include "HYLBasNodeOffsets.h"
#include "HYLBasPair.h"
#include "HYLBasPairIterBoolGeneric.h"
#include "HYLBasReplicator.h"
#include "HYLBasTreeGeneric.h"
#include "HYLBasTreeIterator.h"
#include "HYLBasTreeNodeGeneric.h"
#include "detail/HYLBasElementBytes.h"
#include "detail/HYLBasExport.h"
#include "detail/HYLBasInstantiations.h"
#include "detail/HYLBasPlainElement.h"
#include "detail/HYLBasTreeDescent.h"

namespace hylbas_detail {

/// Bytes from a node to a value of type `T`.
template <class T>
inline constexpr int valueOffset =
    static_cast<int>((sizeof(HYLBasTreeNodeGeneric) + alignof(T) - 1) / alignof(T) * alignof(T));

/// Bytes of a whole node with a value of type `T`.
template <class T>
inline constexpr int nodeSize = valueOffset<T> + static_cast<int>(sizeof(T));

static_assert(sizeof(void*) != 4 ||
              (valueOffset<MapElement<char>> == 20 && nodeSize<MapElement<char>> == 28));
static_assert(sizeof(void*) != 4 ||
              (valueOffset<MapElement<double>> == 24 && nodeSize<MapElement<double>> == 40));

/// What a tree with elements `T` and the library's `int` comparator does by its members of the same
/// names, but inline: with a small map, calling into the library takes half of the time. They stand
/// outside of the map because the library holds, and exports, every member of its maps: consumers
/// would call these there too, and they are not to be exported.
template <class T>
struct InlineTree {
  using Tree = HYLBasTreeGeneric<HYLBasNodeAllocator>;
  using Node = HYLBasTreeNodeGeneric;
  using Order = InlinedOrder<int>;

  static Node* Find(Tree const& tree, int const& key) {
    return FindUnique(tree.End(), valueOffset<T>, key, Order());
  }
  static Node* LowerBound(Tree const& tree, int const& key) {
    return hylbas_detail::LowerBound(tree.End(), valueOffset<T>, &key, Order());
  }
  static Node* UpperBound(Tree const& tree, int const& key) {
    return hylbas_detail::UpperBound(tree.End(), valueOffset<T>, &key, Order());
  }
  static HYLBasPairIterBoolGeneric InsertUnique(Tree& tree, T const& element) {
    Leaf const leaf = FindLeafFromEnd(tree.End(), valueOffset<T>, &element, Order());
    if (leaf.IsAfterEquivalent(valueOffset<T>, &element, Order())) return {leaf.before, false};
    // The descent has told the side of `leaf.parent` on which the element goes, but TreeNodeInsert
    // takes only "left" as an answer, by a non-null first argument, and else compares once more.
    // That comparison costs less than choosing the argument by a jump that nobody can predict.
    return {tree.TreeNodeInsert(nullptr, leaf.parent, &element), true};
  }

  /// The node with `key`, or null. The way on to the leaf passes the nodes that take part in the
  /// removal.
  static Node* FindToErase(Tree const& tree, int const& key) {
    Leaf const leaf = FindLeaf(tree.End(), valueOffset<T>, &key, Order());
    return leaf.IsAfterEquivalent(valueOffset<T>, &key, Order()) ? leaf.before : nullptr;
  }
};

} // namespace hylbas_detail

/// The ordered map from unique `int` keys to values, one node per element: `HYLBasTreeGeneric` with
/// typed names. The library holds it for `V` in `char`, `int`, `unsigned int`, `float`, `double`,
/// `long long` and `unsigned long long`.
template <class K, class V>
class HYLBASGENERICS_EXPORT HYLBasMap {
  static_assert(std::is_same_v<K, int>, "the keys of a HYLBasMap are int");
  static_assert(hylbas_detail::RequirePlainElement<V>::value);

public:
  using key_type = K;
  using mapped_type = V;
  using value_type = HYLBasPair<K const, V>;
  using size_type = unsigned int;
  using difference_type = std::ptrdiff_t;
  using reference = value_type&;
  using const_reference = value_type const&;
  using iterator = HYLBasTreeIterator<value_type, value_type&, value_type*>;
  using const_iterator = HYLBasTreeIterator<value_type, value_type const&, value_type const*>;

  /// \name Construction
  /// Copying and assigning a map copies its elements, linear in their number; destroying it
  /// releases them. Assignment invalidates all positions of the map that is assigned to, its end
  /// too.
  /// @{
  HYLBasMap()
      : m_tree(getOffsets(), HYLBasGetReplicator<value_type>(),
               HYLBasComparitor<K>::GetComparitor(), nullptr) {}
  /// The elements of an array; of several with the same key, the first.
  HYLBasMap(value_type const* first, value_type const* last) : HYLBasMap() { insert(first, last); }
  /// The elements of a range of another map.
  HYLBasMap(const_iterator first, const_iterator last) : HYLBasMap() { insert(first, last); }
  /// @}

  /// \name Iteration and size
  /// Constant time.
  /// @{
  iterator begin() { return m_tree.Begin(); }
  const_iterator begin() const { return m_tree.Begin(); }
  iterator end() { return m_tree.End(); }
  const_iterator end() const { return m_tree.End(); }
  unsigned int size() const { return m_tree.Size(); }
  /// 4294967295.
  unsigned int max_size() const { return m_tree.MaxSize(); }
  bool empty() const { return m_tree.Empty(); }
  /// @}

  /// \name Lookup
  /// O(log n).
  /// @{

  /// The value of `key`, which is inserted with value zero when it is absent.
  V& operator[](K const& key) {
    return iterator(Inline::InsertUnique(m_tree, value_type(key, V())).first)->second;
  }
  /// The element with `key`, or `end()`.
  iterator find(K const& key) { return Inline::Find(m_tree, key); }
  const_iterator find(K const& key) const { return Inline::Find(m_tree, key); }
  /// 1 when `key` is present, else 0.
  unsigned int count(K const& key) const {
    return Inline::Find(m_tree, key) != m_tree.End() ? 1 : 0;
  }
  /// The first element whose key is not below `key`.
  iterator lower_bound(K const& key) { return Inline::LowerBound(m_tree, key); }
  const_iterator lower_bound(K const& key) const { return Inline::LowerBound(m_tree, key); }
  /// The first element whose key is above `key`.
  iterator upper_bound(K const& key) { return Inline::UpperBound(m_tree, key); }
  const_iterator upper_bound(K const& key) const { return Inline::UpperBound(m_tree, key); }
  /// (`lower_bound(key)`, `upper_bound(key)`)
  HYLBasPair<iterator, iterator> equal_range(K const& key) {
    return {lower_bound(key), upper_bound(key)};
  }
  HYLBasPair<const_iterator, const_iterator> equal_range(K const& key) const {
    return {lower_bound(key), upper_bound(key)};
  }
  /// @}

  /// \name Insertion
  /// O(log n) for each element; amortised constant time with the position directly after it as a
  /// hint. Invalidates nothing. When a new handler throws on exhausted memory, the elements
  /// inserted so far stay and nothing else has changed.
  /// @{

  /// The element with `key`: the new one, or the existing one, which keeps its value.
  iterator Insert(K const& key, V const& value) {
    return Inline::InsertUnique(m_tree, value_type(key, value)).first;
  }
  /// The element with `key`, whose value is `value` afterwards.
  iterator InsertOver(K const& key, V const& value) {
    HYLBasPairIterBoolGeneric const result = Inline::InsertUnique(m_tree, value_type(key, value));
    if (!result.second) hylbas_detail::CopyElement(&value, &iterator(result.first)->second);
    return result.first;
  }
  /// The element with the key of `element`, and whether it was inserted; an existing one keeps its
  /// value.
  HYLBasPair<iterator, bool> insert(value_type const& element) {
    return fromGeneric(Inline::InsertUnique(m_tree, element));
  }
  /// The same, with a hint: the position that the new element will come directly before.
  iterator insert(iterator position, value_type const& element) {
    return m_tree.InsertUniqueAtPosition(position.m_node, &element);
  }
  /// Inserts the elements of an array whose keys are absent.
  void insert(value_type const* first, value_type const* last) {
    for (; first != last; ++first)
      Inline::InsertUnique(m_tree, *first);
  }
  /// Inserts the elements of a range whose keys are absent.
  void insert(const_iterator first, const_iterator last) {
    for (; first != last; ++first)
      Inline::InsertUnique(m_tree, *first);
  }
  /// @}

  /// \name Removal
  /// By position amortised constant time, by key O(log n). Invalidates positions of removed
  /// elements only. A key may be that of an element of the map.
  /// @{
  void erase(iterator position) { m_tree.Erase(position.m_node); }
  /// Removes [`first`, `last`).
  void erase(iterator first, iterator last) { m_tree.Erase(first.m_node, last.m_node); }
  /// Removes the element with `key`; returns how many there were, 1 or 0.
  unsigned int erase(K const& key) {
    HYLBasTreeNodeGeneric* const node = Inline::FindToErase(m_tree, key);
    if (node == nullptr) return 0;
    m_tree.Erase(node);
    return 1;
  }
  /// Removes the element of every key of the array; absent keys are skipped.
  void erase(K const* first, K const* last) {
    for (; first != last; ++first)
      erase(*first);
  }
  /// Linear.
  void clear() { m_tree.Clear(); }
  /// @}

  /// Exchanges the contents in constant time; positions, the ends too, stay valid and belong to the
  /// other map.
  void swap(HYLBasMap& other) { m_tree.Swap(&other.m_tree); }

private:
  using Inline = hylbas_detail::InlineTree<value_type>;

  static HYLBasNodeOffsets getOffsets() {
    return {hylbas_detail::valueOffset<value_type>, hylbas_detail::nodeSize<value_type>};
  }
  static HYLBasPair<iterator, bool> fromGeneric(HYLBasPairIterBoolGeneric const& g) {
    return {g.first, g.second};
  }

  HYLBasTreeGeneric<HYLBasNodeAllocator> m_tree;
};

/// `a.swap(b)`, for code that exchanges two objects of any type by an unqualified `swap`.
template <class K, class V>
void swap(HYLBasMap<K, V>& a, HYLBasMap<K, V>& b) {
  a.swap(b);
}

// The instantiations live in the library.
#define HYLBAS_DECLARE_MAP(V) extern template class HYLBasMap<int, V>;
HYLBAS_FOR_EACH_MAPPED_TYPE(HYLBAS_DECLARE_MAP)
#undef HYLBAS_DECLARE_MAP
