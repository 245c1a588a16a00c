// What signatures of texts tell, apart from any books.
#include "qdclgl/server/periods/text_signature.h"

#include <gtest/gtest.h>

#include "qdclgl/frame/vocabulary/text.h"

namespace qdclgl::server {
namespace {

TextSignature Of(std::string_view text) {
  TextSignature signature;
  signature.Add(text);
  return signature;
}

bool MayHave(std::string_view text, std::string_view word) {
  return Of(text).HasAll(TextSignature::MarksOf(word));
}

TEST(TextSignatureTest, HasEachPartOfItsTextsWhateverTheCase) {
  const std::string text = "Green Tea, 12 x 119.00 für Änne: 办公用品 \\ \"Größe\"";
  const std::u16string units = ToUtf16(text);
  for (std::size_t first = 0; first < units.size(); ++first) {
    for (std::size_t count = 1; first + count <= units.size(); ++count) {
      const std::string part = FromUtf16(std::u16string_view(units).substr(first, count));
      EXPECT_TRUE(MayHave(text, part)) << part;
    }
  }
  EXPECT_TRUE(MayHave(text, "gREEN tEA"));
  EXPECT_TRUE(MayHave(text, "FÜR ÄNNE"));
}

TEST(TextSignatureTest, LacksWhatIsInNoneOfThem) {
  TextSignature signature = Of("Delivery 4711 of paper");
  signature.Add("rent");
  for (const char* const word : {"tea", "deliveries", "4712", "rental", "paperr", "用"}) {
    EXPECT_FALSE(signature.HasAll(TextSignature::MarksOf(word))) << word;
  }
}

TEST(TextSignatureTest, FewerThanThreeBytesHaveNoMarks) {
  for (const char* const word : {"", "a", "ab", "Ä"}) {
    EXPECT_TRUE(TextSignature::MarksOf(word).empty()) << word;
  }
  EXPECT_EQ(TextSignature::MarksOf("abc").size(), 1u);
  EXPECT_EQ(TextSignature::MarksOf("abcd").size(), 3u);
}

TEST(TextSignatureTest, IsStoredAsPrintableTextThatStaysTheSame) {
  const TextSignature signature = Of("Quince jelly");
  EXPECT_EQ(signature.stored().size(), 1900u);
  for (const char c : signature.stored()) EXPECT_TRUE(c >= '0' && c <= 'o') << int{c};
  EXPECT_TRUE(TextSignature(signature.stored()).HasAllOf(signature));
  EXPECT_TRUE(signature.HasAllOf(TextSignature()));
  EXPECT_FALSE(TextSignature().HasAllOf(signature));
  // Books hold signatures that were made by this.
  EXPECT_EQ(TextSignature::MarksOf("quin"), (TextSignature::Marks{4894, 16, 2271}));
}

TEST(TextSignatureTest, OneThatIsDamagedLetsEverythingBeRead) {
  EXPECT_TRUE(TextSignature("").HasAll(TextSignature::MarksOf("quince")));
  EXPECT_TRUE(TextSignature(std::string(1901, '0')).HasAll(TextSignature::MarksOf("quince")));
}

}  // namespace
}  // namespace qdclgl::server
