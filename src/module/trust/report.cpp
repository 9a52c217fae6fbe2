#include "trust/report.h"

#include "trust/sentences.h"
#include "trust/signerfacts.h"

namespace trust {

Evidence EvidenceOf(const PlatformVerdict& verdict) {
  Evidence evidence;
  evidence.code = verdict.code;
  evidence.hasChain = verdict.hasChain;
  evidence.chainErrors = verdict.chainErrors;
  return evidence;
}

Signature Report(const Evidence& evidence, const PlatformVerdict& verdict, const std::optional<SignedData>& data) {
  Signature signature;
  const Judgement judgement = Judge(evidence);
  signature.state = judgement.state;
  signature.code = judgement.code;
  if (judgement.code != 0) signature.sentence = SentenceFor(judgement.code);
  if (data) {
    signature.facts = FactsOf(*data, verdict.chain);
    signature.nested = NestedFactsOf(*data);
  }
  return signature;
}

}  // namespace trust
