// The ordered list of pairs that carries file names, patterns and conflicts between the module and its host.
#pragma once

#include <cstdint>

#include "engine/MString.h"

class MStringList {
 public:
  struct MStringNode {
    virtual ~MStringNode() = default;
    MString key;
    MString value;  // the key again in a list of plain texts
    MStringNode* next = nullptr;
    MStringNode* previous = nullptr;
  };

  // Steps through a list from its head. Made by Iterate(); the caller deletes it. Valid while the list is unchanged.
  class Iterator {
   public:
    explicit Iterator(const MStringList* list) : list_(list), current_(list->head_) {}
    [[nodiscard]] const MStringList* List() const { return list_; }
    [[nodiscard]] bool AtEnd() const { return current_ == nullptr; }
    void Next() {
      if (current_ != nullptr) current_ = current_->next;
    }
    // The current entry's text; an empty string past the end.
    [[nodiscard]] MString Key() const { return current_ == nullptr ? MString(L"") : current_->key; }
    [[nodiscard]] MString Value() const { return current_ == nullptr ? MString(L"") : current_->value; }

   private:
    const MStringList* list_;
    const MStringNode* current_;
  };

  MStringList() = default;
  MStringList(const MStringList&) = delete;
  MStringList& operator=(const MStringList&) = delete;
  ~MStringList() { Clear(); }

  // Append at the tail; always true.
  bool Add(MString key, MString value);
  bool Add(MString text);
  void Clear();
  [[nodiscard]] Iterator* Iterate() const { return new Iterator(this); }
  [[nodiscard]] int32_t Count() const { return count_; }
  [[nodiscard]] const MStringNode* Head() const { return head_; }
  // Whether an entry's key equals `text`; with `entriesArePrefixes`, whether `text` starts with an entry's key.
  [[nodiscard]] bool Contains(const MString& text, bool entriesArePrefixes = false) const;

 private:
  MStringNode* head_ = nullptr;
  MStringNode* tail_ = nullptr;
  int32_t count_ = 0;
};
