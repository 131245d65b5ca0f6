#!/usr/bin/python3
"""A real SMTP server for the mail tests (aiosmtpd). Prints "PORT <n>", then "READY"; then one
"MSG <json>" line per message received, with its envelope, headers and decoded body."""
import argparse
import asyncio
import base64
import email
import email.policy
import hmac
import json
import logging
import socket
import ssl
import sys
import warnings

from aiosmtpd.controller import Controller
from aiosmtpd.smtp import AuthResult, LoginPassword

parser = argparse.ArgumentParser()
parser.add_argument("--host", default="127.0.0.1")
parser.add_argument("--port", type=int, default=0)
parser.add_argument("--tls", choices=["none", "starttls", "implicit"], default="none")
parser.add_argument("--cert")
parser.add_argument("--key")
parser.add_argument("--user", default="")
parser.add_argument("--password", default="")
parser.add_argument("--refuse", action="store_true")
parser.add_argument("--no-auth", action="store_true", help="offer no login at all")
parser.add_argument("--plain-only", action="store_true", help="offer PLAIN login only")
parser.add_argument("--quiet", action="store_true", help="count messages, do not print them")
args = parser.parse_args()

warnings.filterwarnings("ignore", category=DeprecationWarning)
logging.getLogger("mail.log").setLevel(logging.ERROR)
CHALLENGE = b"<1896.697170952@quillon.test>"
received = 0


class Handler:
    async def handle_DATA(self, server, session, envelope):
        global received
        received += 1
        if args.refuse:
            return "550 Refused: no thanks"
        if not args.quiet:
            msg = email.message_from_bytes(envelope.original_content or envelope.content, policy=email.policy.default)
            headers = {"from": "From", "to": "To", "subject": "Subject", "transfer_encoding": "Content-Transfer-Encoding"}
            print("MSG " + json.dumps(dict({name: str(msg[header]) for name, header in headers.items()}, mail_from=envelope.mail_from,
                                           rcpt_tos=envelope.rcpt_tos, authenticated=bool(session.authenticated), content_type=msg.get_content_type(),
                                           charset=msg.get_content_charset(), body=msg.get_content())), flush=True)
        else:
            print("COUNT %d" % received, flush=True)
        return "250 OK"

    async def auth_CRAM__MD5(self, server, arguments):
        response = await server.challenge_auth(CHALLENGE)
        try:
            user, digest = response.decode().split(" ", 1)
        except (AttributeError, ValueError):
            return AuthResult(success=False, handled=False)
        expected = hmac.new(args.password.encode(), CHALLENGE, "md5").hexdigest()
        return AuthResult(success=user == args.user and hmac.compare_digest(digest, expected), handled=False)


def authenticator(server, session, envelope, mechanism, auth_data):
    ok = isinstance(auth_data, LoginPassword) and auth_data.login.decode() == args.user \
        and auth_data.password.decode() == args.password
    return AuthResult(success=ok, handled=False)


def free_port(host):
    with socket.socket() as s:
        s.bind((host, 0))
        return s.getsockname()[1]


context = None
if args.tls != "none":
    context = ssl.create_default_context(ssl.Purpose.CLIENT_AUTH)
    context.load_cert_chain(args.cert, args.key)

port = args.port or free_port(args.host)
options = dict(hostname=args.host, port=port, server_hostname="quillon.test", authenticator=authenticator, auth_require_tls=False)
if args.no_auth:
    options.update(auth_exclude_mechanism=["LOGIN", "PLAIN", "CRAM-MD5"])
if args.plain_only:
    options.update(auth_exclude_mechanism=["LOGIN", "CRAM-MD5"])
if args.tls == "starttls":
    options.update(tls_context=context, require_starttls=True)
elif args.tls == "implicit":
    options.update(ssl_context=context)
controller = Controller(Handler(), **options)
controller.start()
print("PORT %d" % port, flush=True)
print("READY", flush=True)
try:
    sys.stdin.read()  # until the test closes our input
finally:
    controller.stop()
