#pragma once

#include "lib/image/resample/weighted_sum.h"

namespace imgbasic {

/// x / kFullScale * kQuotientRaise = x * 256 / 255 = x + x / 255, correctly rounded, without a
/// division (after Brisebarre, Muller and Raina, 2004).
///
/// Scaled to integers, the quotient of a 53-bit number by 255 and the middle between two doubles
/// differ by an even number less an odd one, over 510: by at least 1/510 of the quotient's last
/// place. What the multiply-add rounds differs from the quotient only by the error of kInverse,
/// less than x * 2^-63 or 2^-10 of a last place, so both round alike. That leaves out numbers near
/// the smallest of all; sums that give a pixel have none.
template <typename Lanes>
static inline typename Lanes::Doubles RaisedOverFullScale(typename Lanes::Doubles x) {
    constexpr double kInverse = 1.0 / 255;
    return Lanes::MultiplyAdd(x, Lanes::Set(kInverse), x);
}

/// `divisor` in the lanes of `mask` and 1 in the others. Most often those are all, which is cheaper
/// to ask for than to select.
template <typename Lanes>
static inline typename Lanes::Doubles DivisorIn(typename Lanes::Mask mask,
                                                typename Lanes::Doubles divisor) {
    return Lanes::All(mask) ? divisor : Lanes::Select(mask, divisor, Lanes::Set(1));
}

template <typename Lanes>
static inline bool AreOpaque(const auto&... pixels) {
    auto missing = typename Lanes::Pixels{};
    ((missing = Lanes::Union(missing, Lanes::NotOpaque(pixels))), ...);
    return !Lanes::Any(Lanes::Visible(missing));
}

/// What opaque pixels with the given weights add to an alpha sum.
template <typename Lanes>
static inline typename Lanes::Doubles OpaqueShare(typename Lanes::Doubles weights) {
    return RaisedOverFullScale<Lanes>(Lanes::Set(kFullScale) * weights);
}

/// WeightedSum of several pixels at once. Every sum is kept multiplied by a power of two, which
/// changes no rounding and saves shifting the channels down.
template <typename Lanes>
class WeightedSumLanes {
  public:
    using Doubles = typename Lanes::Doubles;

    /// A part of the alpha sum, and the same as Part needs it beside.
    struct Share {
        Doubles share = Lanes::Set(0);
        Doubles raised = Lanes::Set(0);

        Share() = default;
        explicit Share(Doubles value) : share(value), raised(value * Lanes::Set(kRaise)) {}
    };

    void Add(typename Lanes::Pixels pixels, Doubles weights) {
        const Doubles alpha = Lanes::RaisedAlpha(pixels) - Lanes::Set(kRaise);
        AddShare(pixels, Share(RaisedOverFullScale<Lanes>(alpha * weights)));
    }

    /// Adds pixels whose part of the alpha sum is known: for opaque ones, OpaqueShare.
    void AddShare(typename Lanes::Pixels pixels, const Share& share) {
        r_ += Part<0>(pixels, share);
        g_ += Part<1>(pixels, share);
        b_ += Part<2>(pixels, share);
        a_ += share.share;
    }

    /// What pixels add to the sum of a colour channel. Inside a multiply-add,
    /// (2^52 + x) * share - 2^52 * share is exact: the product x * share is rounded once, as it is
    /// without the detour.
    template <int kChannel>
    static Doubles Part(typename Lanes::Pixels pixels, const Share& share) {
        return RaisedOverFullScale<Lanes>(Lanes::MultiplySubtract(
            Lanes::template RaisedColor<kChannel>(pixels), share.share, share.raised));
    }

    typename Lanes::Mask IsVisible() const { return Lanes::Greater(a_, Lanes::Set(0)); }

    /// `covered` times the alpha sum, on the scale of a channel.
    Doubles Alpha(Doubles covered) const {
        return covered * a_ * Lanes::Set(kFullScale / kQuotientRaise);
    }

    /// What makes mean colours of the colour sums. Where nothing is visible, these are 0 or what is
    /// left of 0 by rounding; there they are divided by 1, since a host may have unmasked the
    /// exceptions of a division by zero and of converting its result.
    Doubles Scale() const {
        return Lanes::Set(kFullScale / kQuotientRaise) / DivisorIn<Lanes>(IsVisible(), a_);
    }

    /// The mean colours, `scale` being Scale(), with the given alphas.
    typename Lanes::Pixels Mean(Doubles scale, Doubles alpha) const {
        return Lanes::Pack(scale * r_, scale * g_, scale * b_, alpha);
    }

  private:
    static constexpr double kRaise = 4503599627370496.0;  ///< 2^52, see RaisedColor

    // Alpha is raised by kQuotientRaise; the colours by its square, green by another 2^16 and
    // blue by another 2^32, which is where they stand in a pixel.
    Doubles r_ = Lanes::Set(0);
    Doubles g_ = Lanes::Set(0);
    Doubles b_ = Lanes::Set(0);
    Doubles a_ = Lanes::Set(0);
};

}  // namespace imgbasic
