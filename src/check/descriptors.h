#ifndef RUNNER_CHECK_DESCRIPTORS_H_
#define RUNNER_CHECK_DESCRIPTORS_H_

#include <string>

namespace runner {

// Descriptor owns an open file descriptor; a negative one stands for none.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor();
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  [[nodiscard]] bool isOpen() const { return number_ >= 0; }
  [[nodiscard]] int number() const { return number_; }

  // path is a name under which this process and its children open the file once more, also when
  // it has no other name.
  [[nodiscard]] std::string path() const;

 private:
  int number_;
};

// createTemporaryFile returns a new file in `directory` that has no name there any more, so that
// nothing of it is left when this process ends, in whatever way. The result is a negative number,
// with the reason in errno, when it cannot be made. The caller closes it.
int createTemporaryFile(const std::string& directory);

}  // namespace runner

#endif  // RUNNER_CHECK_DESCRIPTORS_H_
