#include "store/AwsS3Store.h"

#include <aws/core/auth/AWSAuthSigner.h>

#include <cassert>
#include <new>
#include <system_error>

#include "exec/AwsS3BackupExecutor.h"
#include "log/ModuleLog.h"
#include "store/ClientChecksums.h"
#include "store/InstanceMetadata.h"
#include "store/ObjectKey.h"
#include "store/PlainHosts.h"

namespace {

// Large parts over slow links need minutes; a connection that takes longer than this is dead.
constexpr long kRequestTimeoutMs = 300000;
constexpr long kConnectTimeoutMs = 180000;

void AssignIfGiven(std::string& strTarget, const char* pszText) {
    if (pszText != nullptr) {
        strTarget = pszText;
    }
}

}  // namespace

AwsS3Store::AwsS3Store() {
    m_nRequestCount.exchange(0);
    m_nInitMultiPartCount.exchange(0);
    m_nFinishMultiPartCount.exchange(0);
}

AwsS3Store::~AwsS3Store() {
    // First, while every member is alive: handlers use the store. Deleted before its last call, an
    // installed SDK's client would fail those that have not begun.
    m_pCalls->WaitForAll();
    // The last owner of the executor joins its threads. The members follow in the reverse order of
    // their declaration; the map of uploads goes without the states it points to.
    delete m_pClient;
    m_pClient = nullptr;
}

int32_t AwsS3Store::Init(CloudStoreConfigInfo* pConfig) {
    assert(pConfig != nullptr);
    // A null text keeps what an earlier Init set.
    AssignIfGiven(m_strRegion, pConfig->m_pszRegion);
    AssignIfGiven(m_strBucket, pConfig->m_pszBucket);
    AssignIfGiven(m_strSecretKey, pConfig->m_pszSecretKey);
    AssignIfGiven(m_strAccessKeyId, pConfig->m_pszAccessKeyId);
    AssignIfGiven(m_strEndPoint, pConfig->m_pszEndPoint);
    assert(pConfig->m_nBufferSize >= 0);
    // First: where there is no memory for it, the earlier buffer and its size stay together.
    m_pWorkBuffer = std::make_unique<Aws::Utils::Array<unsigned char>>(
        static_cast<size_t>(pConfig->m_nBufferSize));
    m_bUseHttps = pConfig->m_bUseHttps;
    m_nBufferSize = pConfig->m_nBufferSize;
    m_nProviderType = pConfig->m_nProviderType;
    m_ConfigInfo = *pConfig;
    return BuildClient();
}

int32_t AwsS3Store::BuildClient() {
    auto configuration =
        Mirqos::ConfigurationWithoutInstanceMetadata<Aws::Client::ClientConfiguration>();
    Aws::Auth::AWSCredentials credentials;
    credentials.SetAWSSecretKey(m_strSecretKey.c_str());
    credentials.SetAWSAccessKeyId(m_strAccessKeyId.c_str());
    configuration.requestTimeoutMs = kRequestTimeoutMs;
    configuration.connectTimeoutMs = kConnectTimeoutMs;
    if (!m_strRegion.empty()) {
        configuration.region = m_strRegion.c_str();
    }
    if (!m_strEndPoint.empty()) {
        configuration.endpointOverride = m_strEndPoint.c_str();
    }
    configuration.scheme = m_bUseHttps != 0 ? Aws::Http::Scheme::HTTPS : Aws::Http::Scheme::HTTP;
    Mirqos::AskForChecksumsOnlyWhenRequired(configuration, 0);
    StartExecutor(configuration);
    // S3-compatible endpoints are reached by path: they seldom have a host name for each bucket.
    const bool bUseVirtualAddressing = m_strEndPoint.empty();
    // An earlier client is left alone: requests of it may still be running.
    m_pClient = new Aws::S3::S3Client(credentials, configuration,
                                      Aws::Client::AWSAuthV4Signer::PayloadSigningPolicy::Never,
                                      bUseVirtualAddressing);
    if (m_bUseHttps == 0 && m_strEndPoint.empty()) {
        Mirqos::ReachOwnHostsOverHttp(*m_pClient, configuration.region, 0);
    }
    return 0;
}

void AwsS3Store::StartExecutor(Aws::Client::ClientConfiguration& configuration) const {
    constexpr char kOperation[] = "AwsS3Store::Init";
    const int32_t nThreadCount = m_ConfigInfo.m_nThreadCount;
    if (nThreadCount <= 0) {
        if (nThreadCount < 0) {
            ModuleLog(&g_ModuleLog, 1, "%s thread count %d counts as 0.", kOperation, nThreadCount);
        }
        return;
    }
    auto pExecutor = Aws::MakeShared<AwsS3BackupExecutor>(Mirqos::kAllocationTag);
    try {
        if (pExecutor->Start(nThreadCount) != 0) {
            throw std::bad_alloc();
        }
    } catch (const std::system_error& refusal) {
        // Too many threads are too much memory to the host, which knows that exception alone.
        ModuleLog(&g_ModuleLog, 1, "%s thread count %d is refused: [%s].", kOperation, nThreadCount,
                  refusal.what());
        throw std::bad_alloc();
    }
    configuration.executor = pExecutor;
}

const char* AwsS3Store::GetRegion() {
    return m_strRegion.c_str();
}

const char* AwsS3Store::GetBucketName() {
    return m_strBucket.c_str();
}

const char* AwsS3Store::GetAccessKeyId() {
    return m_strAccessKeyId.c_str();
}

const char* AwsS3Store::GetSecretKey() {
    return m_strSecretKey.c_str();
}

uint64_t AwsS3Store::GetRequestCount() {
    return m_nRequestCount.load();
}

Aws::String AwsS3Store::KeyForService(const char* pszKey) const {
    assert(pszKey != nullptr);
    Aws::String key = pszKey;
    if (SubstitutesKeys(m_nProviderType)) {
        EncodeObjectKey(key);
    }
    return key;
}
