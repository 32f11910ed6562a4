// The face that the C operations of a library work on: a C interface has no object to keep it in.
#pragma once

#include <exception>
#include <mutex>

namespace corlune {

// All libraries drive one bench, so one call at a time is in them all, whatever thread it comes from. A
// test's wait may come back in here.
inline std::recursive_mutex& BenchMutex() {
  static std::recursive_mutex mutex;
  return mutex;
}

template <class Face>
Face*& ChosenFace() {
  static Face* face = nullptr;
  return face;
}

// Null: the operations of this library fail.
template <class Face>
void SetFace(Face* face) {
  const std::scoped_lock lock(BenchMutex());
  ChosenFace<Face>() = face;
}

// Runs one operation of the chosen face; `failed` without a face and when it throws.
template <class Face, class Result, class Operation>
Result WithFace(Result failed, Operation operation) {
  const std::scoped_lock lock(BenchMutex());
  Face* const face = ChosenFace<Face>();
  if (face == nullptr) return failed;
  try {
    return operation(*face);
  } catch (const std::exception&) {
    return failed;
  }
}

}  // namespace corlune
