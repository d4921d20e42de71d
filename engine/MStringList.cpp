#include "engine/MStringList.h"

#include <utility>

bool MStringList::Add(MString key, MString value) {
  auto* node = new MStringNode;
  node->key = std::move(key);
  node->value = std::move(value);
  node->previous = tail_;
  (tail_ == nullptr ? head_ : tail_->next) = node;
  tail_ = node;
  ++count_;
  return true;
}

bool MStringList::Add(MString text) {
  return Add(text, text);
}

// From the tail back, without recursion: a list may be longer than the stack is deep.
void MStringList::Clear() {
  while (tail_ != nullptr) delete std::exchange(tail_, tail_->previous);
  head_ = nullptr;
  count_ = 0;
}

bool MStringList::Contains(const MString& text, bool entriesArePrefixes) const {
  for (const MStringNode* node = head_; node != nullptr; node = node->next) {
    if (entriesArePrefixes ? text.StartsWith(node->key) : text.Equals(node->key)) return true;
  }
  return false;
}
