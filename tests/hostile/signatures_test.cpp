// Damaged images, signatures and catalogs. Whatever they say, the process goes on, and nothing is valid that was not
// signed.
#include <fstream>

#include "hostile.h"
#include "samples.h"
#include "temporaryfiles.h"
#include "trust/signature.h"
#include "trustedmachine.h"

using test::HostileBatch;
using test::Random;
using test::SampleBytes;
using test::SamplePath;
using trust::Catalogs;
using trust::Hashes;
using trust::HashImage;
using trust::SignatureState;

namespace {

void WriteBytes(const std::string& path, const std::string& bytes) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file << bytes;
}

std::uint32_t NumberAt(const std::string& bytes, std::size_t offset) {
  std::uint32_t number = 0;
  for (std::size_t i = 4; i-- > 0;) number = number << 8 | static_cast<unsigned char>(bytes[offset + i]);
  return number;
}

/// Where the parts of a sample are that Windows reads.
struct Places {
  std::size_t headers;
  std::size_t directoryEntry;
  std::size_t table;
};

Places PlacesOf(const std::string& image) {
  const std::size_t headers = NumberAt(image, 60);
  const std::size_t entry = headers + 24 + 112 + 32;
  return {headers, entry, NumberAt(image, entry)};
}

/// A number that programs get wrong: none, few, almost 2^31 or 2^32, or any.
std::string HostileNumber(Random& random) {
  static constexpr std::uint32_t numbers[] = {0,      1,          7,          8,          0x7F,      0x80,
                                              0xFFFF, 0x7FFFFFFF, 0x80000000, 0xFFFFFFF8, 0xFFFFFFFF};
  const std::uint32_t number = random.OneIn(3) ? static_cast<std::uint32_t>(random.Next()) : random.Pick(numbers);
  std::string bytes;
  for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(number >> shift);
  return bytes;
}

/// One damage within [begin, end) of `bytes`, which keep their size.
void DamageOnce(std::string& bytes, std::size_t begin, std::size_t end, Random& random) {
  end = std::min(end, bytes.size());
  if (begin >= end) return;
  const std::size_t at = begin + random.Below(end - begin);
  const std::size_t room = end - at;
  switch (random.Below(5)) {
    case 0:
      bytes[at] = random.Byte();
      break;
    case 1:
      bytes[at] = static_cast<char>(bytes[at] ^ 1 << random.Below(8));
      break;
    case 2:
      // Lengths of DER: longer, shorter, indefinite, of more bytes than there are.
      bytes[at] = random.Pick(std::string("\x80\x81\x82\x83\x84\x85\xFF\x7F\x00\x30\x31\xA0\x04\x06", 14));
      break;
    case 3:
      bytes.replace(at, std::min<std::size_t>(room, 4), HostileNumber(random).substr(0, room));
      break;
    default: {
      // A piece from elsewhere.
      const std::size_t size = std::min(room, random.Size(300));
      bytes.replace(at, size, std::string(bytes, random.Below(bytes.size() - size + 1), size));
    }
  }
}

void Damage(std::string& bytes, std::size_t begin, std::size_t end, Random& random) {
  for (std::size_t count = 1 + random.Below(4); count > 0; --count) DamageOnce(bytes, begin, end, random);
}

constexpr const char* SignedImages[] = {"signed.sys",  "signed-sha1.sys",   "dual.sys",        "stamped.sys",
                                        "whql.sys",    "stamped-pkcs9.sys", "page-hashes.sys", "untrusted.sys",
                                        "expired.sys", "signed-sha384.sys"};

std::vector<std::string> GoodImages() {
  std::vector<std::string> images;
  for (const char* const file : SignedImages) images.push_back(SampleBytes(file));
  return images;
}

/// A file that changes from input to input.
class ChangingFile {
 public:
  explicit ChangingFile(const std::string& path) : m_path(path) {}
  ~ChangingFile() { std::remove(m_path.c_str()); }
  const std::string& Path() const { return m_path; }
  void Write(const std::string& bytes) { WriteBytes(m_path, bytes); }

 private:
  std::string m_path;
};

class HostileSignatures : public test::TrustingMachine {};

TEST_F(HostileSignatures, OfDamagedImagesAreNeverValid) {
  const std::vector<std::string> good = GoodImages();
  ChangingFile file(test::TemporaryPath("hostile.sys"));
  const Catalogs catalogs;
  HostileBatch batch("signed images");
  batch.ForEach([&](Random& random) {
    std::string image = random.Pick(good);
    const Places places = PlacesOf(image);
    // A byte that the signature covers, in what follows the headers; then anything anywhere.
    const std::size_t covered = 0x400 + random.Below(places.table - 0x400);
    image[covered] = static_cast<char>(image[covered] ^ (1 + random.Below(255)));
    if (random.OneIn(2)) Damage(image, places.headers, places.headers + 0x108, random);
    if (random.OneIn(4)) image.replace(60, 4, HostileNumber(random));
    if (random.OneIn(3)) image.replace(places.directoryEntry + 4 * random.Below(2), 4, HostileNumber(random));
    if (random.OneIn(2)) Damage(image, places.table, image.size(), random);
    if (random.OneIn(6)) image.resize(random.Below(image.size()));
    file.Write(image);
    const Hashes hashes = HashImage(file.Path());
    EXPECT_EQ(hashes.fileSha256.size(), 64u);
    EXPECT_NE(Verify(file.Path(), hashes, catalogs).state, SignatureState::Valid);
  });
}

TEST_F(HostileSignatures, ThatAreDamagedHoldOnlyForWhatWasSigned) {
  const std::vector<std::string> good = GoodImages();
  const std::string signedHash = HashImage(SamplePath("signed.sys")).imageSha256;
  ChangingFile file(test::TemporaryPath("hostile.sys"));
  const Catalogs catalogs;
  HostileBatch batch("certificate tables");
  std::size_t valid = 0;
  batch.ForEach([&](Random& random) {
    std::string image = random.Pick(good);
    const std::size_t table = PlacesOf(image).table;
    Damage(image, random.OneIn(8) ? table : table + 8, image.size(), random);
    file.Write(image);
    const Hashes hashes = HashImage(file.Path());
    const trust::Signature signature = Verify(file.Path(), hashes, catalogs);
    EXPECT_NE(signature.state, SignatureState::Unsigned);
    if (signature.state != SignatureState::Valid) return;
    // Of the table only what nobody signs has changed: other signatures, stamps, certificates of the chain.
    ++valid;
    EXPECT_EQ(hashes.imageSha256, signedHash);
    EXPECT_EQ(signature.Signer().substr(0, 7), "Sample ");
  });
  EXPECT_LE(valid, 1 + batch.Size() / 2);
}

TEST_F(HostileSignatures, OfDamagedCatalogsHoldOnlyForWhatWasSigned) {
  // Nothing but this catalog lists the file.
  for (const char* const catalog : {"catalog-1.cat", "catalog-2.cat"}) test::RemoveCatalog(SamplePath(catalog));
  const std::string good[] = {SampleBytes("catalog-1.cat"), SampleBytes("catalog-2.cat")};
  const std::string members[] = {SamplePath("by-catalog-1.sys"), SamplePath("by-catalog-2.sys")};
  const Hashes hashes[] = {HashImage(members[0]), HashImage(members[1])};
  ChangingFile file(test::SystemDirectory() + "\\CatRoot\\{F750E6C3-38EE-11D1-85E5-00C04FC295EE}\\hostile.cat");
  HostileBatch batch("catalogs");
  std::size_t valid = 0;
  batch.ForEach([&](Random& random) {
    const std::size_t which = random.Below(2);
    std::string catalog = good[which];
    Damage(catalog, 0, catalog.size(), random);
    if (random.OneIn(8)) catalog.resize(random.Below(catalog.size()));
    file.Write(catalog);
    if (Verify(members[which], hashes[which], Catalogs()).state != SignatureState::Valid) return;
    // The list begins the catalog, behind what says that it is one.
    ++valid;
    constexpr std::size_t list = 0x40;
    EXPECT_EQ(catalog.substr(list, 0x200), good[which].substr(list, 0x200));
  });
  EXPECT_LE(valid, 1 + batch.Size() / 2);
}

TEST_F(HostileSignatures, WithAnEmptyKeyUsageAreInvalid) {
  // Wine ends the process when it is asked about one.
  std::string image = SampleBytes("signed.sys");
  const std::string keyUsage("\x06\x03\x55\x1D\x0F\x01\x01\xFF\x04\x04\x03\x02", 12);
  const std::size_t at = image.find(keyUsage);
  ASSERT_NE(at, std::string::npos);
  // The bit string becomes one without bytes; those that it had are left over.
  image[at + keyUsage.size() - 1] = '\0';
  ChangingFile file(test::TemporaryPath("hostile.sys"));
  file.Write(image);
  const trust::Signature signature = Verify(file.Path(), HashImage(file.Path()), Catalogs());
  EXPECT_EQ(signature.state, SignatureState::Invalid);
  EXPECT_EQ(signature.code, 0x80093103);
  EXPECT_EQ(signature.Signer(), "Sample Platform Components");
}

}  // namespace
