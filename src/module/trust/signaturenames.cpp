#include "trust/signature.h"

namespace trust {

std::string_view NameOf(SignatureState state) {
  switch (state) {
    case SignatureState::Valid:
      return "valid";
    case SignatureState::Invalid:
      return "invalid";
    case SignatureState::Unsigned:
      return "unsigned";
    case SignatureState::Unknown:
      break;
  }
  return "unknown";
}

std::string_view NameOf(SignatureKind kind) {
  switch (kind) {
    case SignatureKind::Embedded:
      return "embedded";
    case SignatureKind::Catalog:
      return "catalog";
    case SignatureKind::None:
      break;
  }
  return "";
}

}  // namespace trust
