#include "tests/voicemath/twins/fft.h"

#include <cfloat>
#include <cmath>
#include <utility>

namespace twins {
namespace {

// Every float expression below is to be rounded to float, operation by operation.
static_assert(FLT_EVAL_METHOD == 0);

constexpr float kPi = 3.14159265358979323846F;

// Four products, one difference and one sum, six roundings. The library's complex product is not
// used: it looks for infinities, and may take another path if it finds a NaN.
Complex Product(Complex x, Complex y) {
  const float realReal = x.real * y.real;
  const float imaginaryImaginary = x.imaginary * y.imaginary;
  const float realImaginary = x.real * y.imaginary;
  const float imaginaryReal = x.imaginary * y.real;
  return {realReal - imaginaryImaginary, realImaginary + imaginaryReal};
}

void Stage(std::vector<float>& real, std::vector<float>& imaginary, std::size_t span, int sign) {
  const std::size_t n = real.size();
  const std::size_t half = span / 2;
  const Complex step = TwiddleStep(half, sign);
  Complex w{1.0F, 0.0F};
  for (std::size_t j = 0; j < half; ++j) {
    for (std::size_t i = j; i < n; i += span) {
      const Complex a{real[i], imaginary[i]};
      const Complex b{real[i + half], imaginary[i + half]};
      real[i] = a.real + b.real;
      imaginary[i] = a.imaginary + b.imaginary;
      const Complex difference{a.real - b.real, a.imaginary - b.imaginary};
      const Complex turned = Product(difference, w);
      real[i + half] = turned.real;
      imaginary[i + half] = turned.imaginary;
    }
    w = Product(w, step);
  }
}

void ReverseBits(std::vector<float>& real, std::vector<float>& imaginary) {
  const std::size_t n = real.size();
  std::size_t j = 0;
  for (std::size_t i = 0; i + 1 < n; ++i) {
    if (i > j) {
      std::swap(real[i], real[j]);
      std::swap(imaginary[i], imaginary[j]);
    }
    std::size_t k = n / 2;
    while (j >= k) {
      j -= k;
      k /= 2;
    }
    j += k;
  }
}

}  // namespace

Complex TwiddleStep(std::size_t half, int sign) {
  // The angle in float; its cosine and sine in double; each rounded to float once.
  const float theta = kPi / static_cast<float>(half);
  const double cosine = std::cos(static_cast<double>(theta));
  const double sine = std::sin(static_cast<double>(theta));
  return {static_cast<float>(cosine), static_cast<float>(-static_cast<double>(sign) * sine)};
}

void Fft(std::vector<float>& real, std::vector<float>& imaginary, int sign) {
  for (std::size_t span = real.size(); span >= 2; span /= 2) {
    Stage(real, imaginary, span, sign);
  }
  ReverseBits(real, imaginary);
}

}  // namespace twins
