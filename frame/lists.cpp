#include "frame/lists.h"

#include <algorithm>

#include "toolkit/text.h"

namespace orv {

void EmListas(const std::vector<std::string>& literais,
              const std::function<void(const std::string&)>& trabalho) {
  // A statement takes at most 1500 of them.
  constexpr std::size_t kLista = 500;
  for (std::size_t de = 0; de < literais.size(); de += kLista) {
    const auto ate = std::min(de + kLista, literais.size());
    trabalho(Join({literais.begin() + static_cast<std::ptrdiff_t>(de),
                   literais.begin() + static_cast<std::ptrdiff_t>(ate)},
                  ","));
  }
}

}  // namespace orv
