"""Where an S3 service is, and with which keys; the same variables name one to the tests."""

import dataclasses

REGION = "us-east-1"


@dataclasses.dataclass(frozen=True)
class Service:
    endpoint: str
    bucket: str
    access_key: str
    secret_key: str

    def environment(self):
        return {"MIRQOS_S3_ENDPOINT": self.endpoint, "MIRQOS_S3_REGION": REGION,
                "MIRQOS_S3_ACCESS_KEY": self.access_key, "MIRQOS_S3_SECRET_KEY": self.secret_key}
