#pragma once

#include <aws/core/utils/memory/stl/AWSString.h>

namespace Aws::S3::Model {

/// Where a bucket is. Values beyond the named ones stand for texts that only the mapper knows.
enum class BucketLocationConstraint {
    NOT_SET,
    af_south_1,
    ap_east_1,
    ap_northeast_1,
    ap_northeast_2,
    ap_northeast_3,
    ap_south_1,
    ap_southeast_1,
    ap_southeast_2,
    ca_central_1,
    cn_north_1,
    cn_northwest_1,
    EU,
    eu_central_1,
    eu_north_1,
    eu_south_1,
    eu_west_1,
    eu_west_2,
    eu_west_3,
    me_south_1,
    sa_east_1,
    us_east_2,
    us_gov_east_1,
    us_gov_west_1,
    us_west_1,
    us_west_2
};

/// Both directions are exact for every text: one without a name of its own gets a value of its own
/// for the life of the process. There is room for 4,096 such texts of up to 1,024 bytes each; any
/// beyond become NOT_SET. The empty text and NOT_SET stand for each other. Thread-safe.
namespace BucketLocationConstraintMapper {

BucketLocationConstraint GetBucketLocationConstraintForName(const Aws::String& name);
Aws::String GetNameForBucketLocationConstraint(BucketLocationConstraint value);

}  // namespace BucketLocationConstraintMapper
}  // namespace Aws::S3::Model
