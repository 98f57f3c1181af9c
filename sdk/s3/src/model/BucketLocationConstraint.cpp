#include <aws/s3/model/BucketLocationConstraint.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "sdk/core/client/Text.h"

namespace Aws::S3::Model::BucketLocationConstraintMapper {
namespace {

struct Name {
    BucketLocationConstraint value;
    std::string_view text;
};

constexpr Name kNames[] = {
    {BucketLocationConstraint::NOT_SET, ""},
    {BucketLocationConstraint::af_south_1, "af-south-1"},
    {BucketLocationConstraint::ap_east_1, "ap-east-1"},
    {BucketLocationConstraint::ap_northeast_1, "ap-northeast-1"},
    {BucketLocationConstraint::ap_northeast_2, "ap-northeast-2"},
    {BucketLocationConstraint::ap_northeast_3, "ap-northeast-3"},
    {BucketLocationConstraint::ap_south_1, "ap-south-1"},
    {BucketLocationConstraint::ap_southeast_1, "ap-southeast-1"},
    {BucketLocationConstraint::ap_southeast_2, "ap-southeast-2"},
    {BucketLocationConstraint::ca_central_1, "ca-central-1"},
    {BucketLocationConstraint::cn_north_1, "cn-north-1"},
    {BucketLocationConstraint::cn_northwest_1, "cn-northwest-1"},
    {BucketLocationConstraint::EU, "EU"},
    {BucketLocationConstraint::eu_central_1, "eu-central-1"},
    {BucketLocationConstraint::eu_north_1, "eu-north-1"},
    {BucketLocationConstraint::eu_south_1, "eu-south-1"},
    {BucketLocationConstraint::eu_west_1, "eu-west-1"},
    {BucketLocationConstraint::eu_west_2, "eu-west-2"},
    {BucketLocationConstraint::eu_west_3, "eu-west-3"},
    {BucketLocationConstraint::me_south_1, "me-south-1"},
    {BucketLocationConstraint::sa_east_1, "sa-east-1"},
    {BucketLocationConstraint::us_east_2, "us-east-2"},
    {BucketLocationConstraint::us_gov_east_1, "us-gov-east-1"},
    {BucketLocationConstraint::us_gov_west_1, "us-gov-west-1"},
    {BucketLocationConstraint::us_west_1, "us-west-1"},
    {BucketLocationConstraint::us_west_2, "us-west-2"},
};

/// Texts without an enumerator, by their place behind the first value. They come from services, so
/// their number and length are bounded: none is ever forgotten.
class UnnamedTexts {
public:
    BucketLocationConstraint ValueOf(std::string_view text) {
        if (text.size() > kMaxLength) {
            return BucketLocationConstraint::NOT_SET;
        }
        const std::lock_guard<std::mutex> lock(m_mutex);
        const auto found = std::find(m_texts.begin(), m_texts.end(), text);
        const auto place = static_cast<std::size_t>(found - m_texts.begin());
        if (found == m_texts.end()) {
            if (m_texts.size() == kMaxCount) {
                return BucketLocationConstraint::NOT_SET;
            }
            m_texts.emplace_back(text);
        }
        return static_cast<BucketLocationConstraint>(kFirstValue + static_cast<int>(place));
    }

    std::string TextOf(BucketLocationConstraint value) {
        const int place = static_cast<int>(value) - kFirstValue;
        const std::lock_guard<std::mutex> lock(m_mutex);
        return place >= 0 && static_cast<std::size_t>(place) < m_texts.size()
                   ? m_texts[static_cast<std::size_t>(place)]
                   : std::string();
    }

private:
    static constexpr int kFirstValue = 0x10000;
    static constexpr std::size_t kMaxCount = 4096;
    static constexpr std::size_t kMaxLength = 1024;

    std::mutex m_mutex;
    std::vector<std::string> m_texts;
};

UnnamedTexts& TheUnnamedTexts() {
    // Never destroyed: threads of a client may still ask while statics are torn down.
    static UnnamedTexts& texts = *new UnnamedTexts;
    return texts;
}

}  // namespace

BucketLocationConstraint GetBucketLocationConstraintForName(const Aws::String& name) {
    const std::string_view text(name.data(), name.size());
    const auto found = std::find_if(std::begin(kNames), std::end(kNames),
                                    [&](const Name& known) { return known.text == text; });
    return found != std::end(kNames) ? found->value : TheUnnamedTexts().ValueOf(text);
}

Aws::String GetNameForBucketLocationConstraint(BucketLocationConstraint value) {
    const auto found = std::find_if(std::begin(kNames), std::end(kNames),
                                    [&](const Name& known) { return known.value == value; });
    return found != std::end(kNames) ? Mirqos::ToAws(found->text)
                                     : Mirqos::ToAws(TheUnnamedTexts().TextOf(value));
}

}  // namespace Aws::S3::Model::BucketLocationConstraintMapper
