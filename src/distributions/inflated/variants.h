// The zero-inflated and zero-truncated families, and the forms that a fit uses.
#pragma once

#include "distributions/discrete/beta_mixtures.h"
#include "distributions/discrete/binomial.h"
#include "distributions/discrete/delaporte.h"
#include "distributions/discrete/hypergeometric.h"
#include "distributions/discrete/logarithmic.h"
#include "distributions/discrete/negative_binomial.h"
#include "distributions/discrete/poisson.h"
#include "distributions/discrete/skellam.h"
#include "distributions/inflated/zero_inflated.h"
#include "distributions/inflated/zero_truncated.h"
#include "distributions/real_counts.h"

namespace pral {

/// The checks of variants that differ from their base family's; its own follow them.
struct BetaGeometricChecks : BaseChecks {
    static Message check(const BetaGeometric& base) {
        if (!(base.alpha > 0)) return "Error: alpha must be >0";
        if (!(base.beta > 2)) return "Error: beta must be > 2";
        return nullptr;
    }
};
struct BetaNegBinChecks : BaseChecks {
    template <class Base>
    static Message check(const Base& base) {
        if (!(base.s > 0)) return "Error: s must be >0";
        if (!(base.a > 0)) return "Error: alpha must be > 0";
        if (!(base.b > 0)) return "Error: beta must be > 0";
        return base.check();
    }
};
struct HypergeoChecks : BaseChecks {
    static Message check(const Hypergeo& base) {
        if (const Message objection = check_ranges(base)) return objection;
        const bool others_pass = Hypergeo(0, base.D, base.M).check() == nullptr && base.n <= base.M;
        return others_pass && base.check() != nullptr ? "Error: n must be an integer" : base.check();
    }
    static Message check_probability(const Hypergeo& base) {
        const Message objection = check_ranges(base);
        return objection != nullptr ? objection : base.check_probability();
    }

  private:
    static Message check_ranges(const Hypergeo& base) {
        if (!(base.n >= 0)) return "Error: n must be >= 0";
        if (!(base.D > 0)) return "Error: D must be > 0";
        if (!(base.M > 0)) return "Error: M must be > 0";
        return nullptr;
    }
};
struct InvHypergeoChecks : BaseChecks {
    static Message check(const InvHypergeo& base) {
        if (const Message objection = check_ranges(base)) return objection;
        if (!(base.s >= 0 && base.s <= base.D)) return "Error: s must be between [0,D]";
        const bool others_pass = InvHypergeo(0, base.D, base.M).check() == nullptr;
        return others_pass && base.check() != nullptr ? "Error: s must be an integer" : base.check();
    }
    static Message check_probability(const InvHypergeo& base) {
        const Message objection = check_ranges(base);
        return objection != nullptr ? objection : base.check_probability();
    }

  private:
    static Message check_ranges(const InvHypergeo& base) {
        if (!(base.D > 0)) return "Error: D must be > 0";
        if (!(base.M > 0)) return "Error: M must be > 0";
        return nullptr;
    }
};
struct SkellamChecks : BaseChecks {
    static Message check_weight(double pi) {
        return pi >= 0 && pi <= 1 ? nullptr : "Error: P must be between [0,1]";
    }
};
struct LogarithmicChecks : BaseChecks {
    static Message check(const Logarithmic& base) {
        return base.theta > 0 && base.theta <= 1 ? nullptr : "Error: theta must be between (0,1]";
    }
};
struct NegBinChecks : BaseChecks {
    template <class Base>
    static Message check(const Base& base) {
        if (!(base.s >= 0)) return "Error: s must be >= 0";
        if (!(base.p >= 0 && base.p <= 1)) return "Error: p must be between [0,1]";
        return base.p > 0 ? base.check() : nullptr;
    }
};

using ZIBetaBinomial = ZeroInflated<BetaBinomial>;
using ZIBetaGeometric = ZeroInflated<BetaGeometric, BetaGeometricChecks>;
using ZIBetaNegBin = ZeroInflated<BetaNegBin, BetaNegBinChecks>;
using ZIBinomial = ZeroInflated<Binomial>;
using ZIDelaporte = ZeroInflated<Delaporte>;
using ZIGeometric = ZeroInflated<Geometric>;
using ZIHypergeo = ZeroInflated<Hypergeo, HypergeoChecks>;
using ZIInvHypergeo = ZeroInflated<InvHypergeo, InvHypergeoChecks>;
using ZILogarithmic = ZeroInflated<Logarithmic, LogarithmicChecks>;
using ZINegBin = ZeroInflated<NegBin, NegBinChecks>;
using ZIPoisson = ZeroInflated<Poisson>;
using ZIPolya = ZeroInflated<Polya>;
using ZISkellam = ZeroInflated<Skellam, SkellamChecks>;

using ZTBetaBinomial = ZeroTruncated<BetaBinomial>;
using ZTBetaGeometric = ZeroTruncated<BetaGeometric, BetaGeometricChecks>;
using ZTBetaNegBin = ZeroTruncated<BetaNegBin, BetaNegBinChecks>;
using ZTBinomial = ZeroTruncated<Binomial>;
using ZTDelaporte = ZeroTruncated<Delaporte>;
using ZTGeometric = ZeroTruncated<Geometric>;
using ZTHypergeo = ZeroTruncated<Hypergeo, HypergeoChecks>;
using ZTInvHypergeo = ZeroTruncated<InvHypergeo, InvHypergeoChecks>;
using ZTNegBin = ZeroTruncated<NegBin, NegBinChecks>;
using ZTPoisson = ZeroTruncated<Poisson>;
using ZTPolya = ZeroTruncated<Polya>;

}  // namespace pral
