// The zero-inflated and zero-truncated families.
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

using ZIBetaBinomial = ZeroInflated<BetaBinomial>;
using ZIBetaGeometric = ZeroInflated<BetaGeometric>;
using ZIBetaNegBin = ZeroInflated<BetaNegBin>;
using ZIBinomial = ZeroInflated<Binomial>;
using ZIDelaporte = ZeroInflated<Delaporte>;
using ZIGeometric = ZeroInflated<Geometric>;
using ZIHypergeo = ZeroInflated<Hypergeo>;
using ZIInvHypergeo = ZeroInflated<InvHypergeo>;
using ZILogarithmic = ZeroInflated<Logarithmic>;
using ZINegBin = ZeroInflated<NegBin>;
using ZIPoisson = ZeroInflated<Poisson>;
using ZIPolya = ZeroInflated<Polya>;
using ZISkellam = ZeroInflated<Skellam>;

using ZTBetaBinomial = ZeroTruncated<BetaBinomial>;
using ZTBetaGeometric = ZeroTruncated<BetaGeometric>;
using ZTBetaNegBin = ZeroTruncated<BetaNegBin>;
using ZTBinomial = ZeroTruncated<Binomial>;
using ZTDelaporte = ZeroTruncated<Delaporte>;
using ZTGeometric = ZeroTruncated<Geometric>;
using ZTHypergeo = ZeroTruncated<Hypergeo>;
using ZTInvHypergeo = ZeroTruncated<InvHypergeo>;
using ZTNegBin = ZeroTruncated<NegBin>;
using ZTPoisson = ZeroTruncated<Poisson>;
using ZTPolya = ZeroTruncated<Polya>;

}  // namespace pral
