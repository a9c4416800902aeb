<?xml version="1.0" encoding="utf-8"?>
<!-- SPDX-License-Identifier: Apache-2.0 -->
<!DOCTYPE TS>
<TS version="2.1" language="es" sourcelanguage="en">
<context>
    <name></name>
    <!-- Everywhere -->
    <message id="sdk.onemomentplease">
        <source></source>
        <translation>Un momento, por favor</translation>
    </message>
    <message id="sdk.takinglonger">
        <source></source>
        <translation>Esto está tardando más de lo habitual</translation>
    </message>
    <message id="errors.generic.api">
        <source></source>
        <translation>Algo ha fallado por nuestra parte. Inténtalo de nuevo.</translation>
    </message>
    <message id="enrollment.enableFaceID.reason">
        <source></source>
        <translation>Confirma que eres tú; así necesitarás menos códigos por SMS.</translation>
    </message>
    <message id="sdk.biometrics.touch">
        <source></source>
        <translation>Toca el lector de huellas.</translation>
    </message>
    <message id="sdk.biometrics.away">
        <source></source>
        <translation>Selecciona esta ventana para usar el lector de huellas.</translation>
    </message>
    <message id="sdk.biometrics.cancel">
        <source></source>
        <translation>Cancelar</translation>
    </message>
    <message id="sdk.biometrics.nomatch">
        <source></source>
        <translation>No coincide. Inténtalo de nuevo.</translation>
    </message>
    <message id="sdk.biometrics.retry">
        <source></source>
        <translation>No hemos podido leer la huella. Inténtalo de nuevo.</translation>
    </message>
    <!-- SMS -->
    <message id="sdk.sms.explain.header">
        <source></source>
        <translation>Comprobemos que eres tú</translation>
    </message>
    <message id="sdk.sms.explain.subheader">
        <source></source>
        <translation>Para proteger tu tarjeta, enviaremos un código de 6 dígitos al móvil que tenemos registrado.</translation>
    </message>
    <message id="sdk.sms.explain.button">
        <source></source>
        <translation>Enviar código</translation>
    </message>
    <message id="sdk.sms.code.header">
        <source></source>
        <translation>Introduce tu código</translation>
    </message>
    <message id="sdk.sms.code.subheader">
        <source></source>
        <translation>Hemos enviado un código de 6 dígitos a tu móvil. Puede tardar un minuto.</translation>
    </message>
    <message id="sdk.sms.code.input">
        <source></source>
        <translation>Código del SMS</translation>
    </message>
    <message id="sdk.sms.code.expired">
        <source></source>
        <translation>Ese código ha caducado. Pide uno nuevo.</translation>
    </message>
    <message id="sdk.sms.code.incorrect">
        <source></source>
        <translation>Ese código no es correcto. Mira el último mensaje e inténtalo de nuevo.</translation>
    </message>
    <message id="sdk.sms.code.button">
        <source></source>
        <translation>Continuar</translation>
    </message>
    <message id="sdk.sms.code.resend">
        <source></source>
        <translation>Reenviar código</translation>
    </message>
    <message id="sdk.sms.code.resendIn">
        <source></source>
        <translation>Reenviar código en %1 s</translation>
    </message>
    <message id="sdk.sms.code.resent">
        <source></source>
        <translation>Te hemos enviado un código nuevo</translation>
    </message>
    <!-- PIN -->
    <message id="sdk.setpin.header">
        <source></source>
        <translation>Elige tu PIN</translation>
    </message>
    <message id="sdk.setpin.fourdigits">
        <source></source>
        <translation>Usa cuatro dígitos</translation>
    </message>
    <message id="sdk.setpin.input">
        <source></source>
        <translation>PIN nuevo</translation>
    </message>
    <message id="sdk.setpin.button">
        <source></source>
        <translation>Continuar</translation>
    </message>
    <message id="sdk.setpin.fourdigits.info">
        <source></source>
        <translation>Tu PIN tiene cuatro dígitos. Lo usarás para pagar en tiendas y sacar efectivo. Elige uno que solo conozcas tú y no lo compartas con nadie. Nunca te lo pediremos.</translation>
    </message>
    <message id="sdk.setpin.fourdigits.info.button">
        <source></source>
        <translation>Entendido</translation>
    </message>
    <message id="sdk.youcandobetter.header">
        <source></source>
        <translation>PIN poco seguro</translation>
    </message>
    <message id="sdk.youcandobetter.subheader">
        <source></source>
        <translation>Ese PIN es fácil de adivinar.</translation>
    </message>
    <message id="sdk.youcandobetter.bullet.one">
        <source></source>
        <translation>Sin secuencias (1234, 4321)</translation>
    </message>
    <message id="sdk.youcandobetter.bullet.two">
        <source></source>
        <translation>Sin repeticiones (1111, 5990)</translation>
    </message>
    <message id="sdk.youcandobetter.bullet.three">
        <source></source>
        <translation>Cuatro dígitos que solo tú sepas</translation>
    </message>
    <message id="sdk.youcandobetter.button">
        <source></source>
        <translation>Elegir otro PIN</translation>
    </message>
    <message id="sdk.confirmpin.header">
        <source></source>
        <translation>Repite tu PIN</translation>
    </message>
    <message id="sdk.confirmpin.input">
        <source></source>
        <translation>PIN nuevo, otra vez</translation>
    </message>
    <message id="sdk.confirmpin.button">
        <source></source>
        <translation>Establecer PIN</translation>
    </message>
    <message id="sdk.error.matchpin.message">
        <source></source>
        <translation>Los PIN no coinciden. Vuelve a introducir tu PIN nuevo.</translation>
    </message>
    <message id="sdk.somethingdoesntmatch.header">
        <source></source>
        <translation>Los PIN no coinciden</translation>
    </message>
    <message id="sdk.somethingdoesntmatch.subheader">
        <source></source>
        <translation>Tu PIN no ha cambiado. Introduce los mismos cuatro dígitos las dos veces.</translation>
    </message>
    <message id="sdk.somethingdoesntmatch.button">
        <source></source>
        <translation>Intentar de nuevo</translation>
    </message>
    <message id="sdk.success.setpin.header">
        <source></source>
        <translation>Tu PIN está listo</translation>
    </message>
    <message id="sdk.success.setpin.subheader">
        <source></source>
        <translation>Puedes usarlo desde ya.</translation>
    </message>
    <message id="sdk.success.setpin.button">
        <source></source>
        <translation>Listo</translation>
    </message>
    <!-- Activation -->
    <message id="sdk.success.cardActivatedAndSetPin.header">
        <source></source>
        <translation>Tu tarjeta está lista</translation>
    </message>
    <message id="sdk.success.cardActivatedAndSetPin.subheader">
        <source></source>
        <translation>Está activada y tiene PIN. Puedes usarla desde ya.</translation>
    </message>
    <message id="sdk.success.cardActivatedAndSetPin.button">
        <source></source>
        <translation>Listo</translation>
    </message>
    <message id="sdk.cardnotactivated.header">
        <source></source>
        <translation>Activa antes tu tarjeta</translation>
    </message>
    <message id="sdk.cardnotactivated.subheader">
        <source></source>
        <translation>Podrás elegir un PIN cuando tu tarjeta esté activada. Tardarás un minuto; ten la tarjeta a mano.</translation>
    </message>
    <message id="sdk.cardnotactivated.button.one">
        <source></source>
        <translation>Activar tarjeta</translation>
    </message>
    <message id="sdk.cardnotactivated.button.two">
        <source></source>
        <translation>Ahora no</translation>
    </message>
    <message id="sdk.cardactivated.header">
        <source></source>
        <translation>Tu tarjeta ya está activada</translation>
    </message>
    <message id="sdk.cardactivated.subheader">
        <source></source>
        <translation>No tienes que hacer nada más. Si quieres, puedes elegir un PIN nuevo.</translation>
    </message>
    <message id="sdk.cardactivated.button.one">
        <source></source>
        <translation>Cerrar</translation>
    </message>
    <message id="sdk.cardactivated.button.two">
        <source></source>
        <translation>Elegir un PIN nuevo</translation>
    </message>
    <message id="sdk.cardarrived.header">
        <source></source>
        <translation>Tu tarjeta ya está aquí</translation>
    </message>
    <message id="sdk.cardarrived.subheader">
        <source></source>
        <translation>Actívala y elige un PIN para empezar a usarla.</translation>
    </message>
    <message id="sdk.cardarrived.start">
        <source></source>
        <translation>Activar tarjeta</translation>
    </message>
    <message id="sdk.activatecard.lastfourdigits.header">
        <source></source>
        <translation>Últimos cuatro dígitos del número de tu tarjeta</translation>
    </message>
    <message id="sdk.activatecard.lastfourdigits.input">
        <source></source>
        <translation>Últimos cuatro dígitos del número de tarjeta</translation>
    </message>
    <message id="sdk.activatecard.lastfourdigits.button">
        <source></source>
        <translation>Continuar</translation>
    </message>
    <message id="sdk.activatecard.cvv.header">
        <source></source>
        <translation>Código de seguridad</translation>
    </message>
    <message id="sdk.activatecard.cvv.subheader">
        <source></source>
        <translation>Los tres dígitos del reverso de tu tarjeta.</translation>
    </message>
    <message id="sdk.activatecard.cvv.input">
        <source></source>
        <translation>Código de seguridad</translation>
    </message>
    <message id="sdk.activatecard.cvv.button">
        <source></source>
        <translation>Continuar</translation>
    </message>
    <!-- Card viewer -->
    <message id="sdk.cardtype.physical">
        <source></source>
        <translation>Tarjeta física</translation>
    </message>
    <message id="sdk.cardtype.virtual">
        <source></source>
        <translation>Tarjeta virtual</translation>
    </message>
    <message id="sdk.cardtype.wearable">
        <source></source>
        <translation>Tarjeta para wearable</translation>
    </message>
    <message id="sdk.cardtype.paywallet">
        <source></source>
        <translation>Tarjeta de monedero digital</translation>
    </message>
    <message id="sdk.cardtype.none">
        <source></source>
        <translation>Tu tarjeta</translation>
    </message>
    <message id="sdk.cardviewer.activateAndSetPin.onCardButton">
        <source></source>
        <translation>Activar tarjeta</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.onCardFrozenMessage.header">
        <source></source>
        <translation>Tu tarjeta está bloqueada</translation>
    </message>
    <message id="sdk.cardviewer.activateAndSetPin.onCardFrozenMessage.subheader">
        <source></source>
        <translation>Desbloquéala para pagar o sacar efectivo.</translation>
    </message>
    <message id="sdk.cardviewer.device.details">
        <source></source>
        <translation>Datos de la tarjeta</translation>
    </message>
    <message id="sdk.cardviewer.device.details.cardholderName">
        <source></source>
        <translation>Nombre en la tarjeta</translation>
    </message>
    <message id="sdk.cardviewer.device.details.cardNumber">
        <source></source>
        <translation>Número de tarjeta</translation>
    </message>
    <message id="sdk.cardviewer.device.details.expirationDate">
        <source></source>
        <translation>Fecha de caducidad</translation>
    </message>
    <message id="sdk.cardviewer.device.details.cvv">
        <source></source>
        <translation>Código de seguridad</translation>
    </message>
    <message id="sdk.cardviewer.device.details.reveal">
        <source></source>
        <translation>Mostrar datos</translation>
    </message>
    <message id="sdk.cardviewer.device.details.hide">
        <source></source>
        <translation>Ocultar datos</translation>
    </message>
    <message id="sdk.cardviewer.device.details.missing">
        <source></source>
        <translation>No disponible</translation>
    </message>
    <message id="sdk.taptocopy">
        <source></source>
        <translation>Toca para copiar</translation>
    </message>
    <message id="sdk.copiedToClipboard">
        <source></source>
        <translation>Copiado</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.freezeMyCard">
        <source></source>
        <translation>Bloquear mi tarjeta temporalmente</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.freezeCardPopup.header">
        <source></source>
        <translation>¿Bloquear tu tarjeta?</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.freezeCardPopup.body">
        <source></source>
        <translation>Se rechazarán los pagos y las retiradas de efectivo hasta que la desbloquees.</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.freezeCardPopup.freezeButton">
        <source></source>
        <translation>Bloquear tarjeta</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.freezeCardPopup.cancelButton">
        <source></source>
        <translation>Cancelar</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.unFreezeCardPopup.header">
        <source></source>
        <translation>¿Desbloquear tu tarjeta?</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.unFreezeCardPopup.body">
        <source></source>
        <translation>Podrás volver a pagar y sacar efectivo.</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.unFreezeCardPopup.unFreezeButton">
        <source></source>
        <translation>Desbloquear tarjeta</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.unFreezeCardPopup.cancelButton">
        <source></source>
        <translation>Cancelar</translation>
    </message>
    <message id="errors.base64todata.failed">
        <source></source>
        <translation>Ahora mismo no podemos mostrar la imagen de tu tarjeta.</translation>
    </message>
    <message id="errors.datatoimage.failed">
        <source></source>
        <translation>Ahora mismo no podemos mostrar la imagen de tu tarjeta.</translation>
    </message>
    <message id="errors.decodedimgstrempty.failed">
        <source></source>
        <translation>Ahora mismo no podemos mostrar la imagen de tu tarjeta.</translation>
    </message>
    <message id="errors.decodedDisclosureStructIsNil">
        <source></source>
        <translation>Ahora mismo no podemos mostrar las condiciones de tu tarjeta.</translation>
    </message>
    <!-- Errors -->
    <message id="sdk.errorPage.tryagain.header">
        <source></source>
        <translation>No se ha completado</translation>
    </message>
    <message id="sdk.errorPage.tryagain.subheader.one">
        <source></source>
        <translation>Algo ha fallado por nuestra parte.</translation>
    </message>
    <message id="sdk.errorPage.tryagain.subheader.two">
        <source></source>
        <translation>Inténtalo de nuevo más tarde.</translation>
    </message>
    <message id="sdk.errorPage.tryagain.button">
        <source></source>
        <translation>Cerrar</translation>
    </message>
    <message id="sdk.registration.errorPage.header">
        <source></source>
        <translation>No ha funcionado</translation>
    </message>
    <message id="sdk.registration.errorPage.body">
        <source></source>
        <translation>No hemos podido completar este paso. Vuelve atrás e inténtalo de nuevo.</translation>
    </message>
    <message id="sdk.registration.errorPage.button">
        <source></source>
        <translation>Volver</translation>
    </message>
    <message id="sdk.errorPage.contactSupport.header">
        <source></source>
        <translation>Ponte en contacto con nosotros</translation>
    </message>
    <message id="sdk.errorPage.contactSupport.subheader.one">
        <source></source>
        <translation>No podemos hacer esto por ti en la app.</translation>
    </message>
    <message id="sdk.errorPage.contactSupport.subheader.two">
        <source></source>
        <translation>Nuestro equipo de atención al cliente te ayudará.</translation>
    </message>
    <message id="sdk.errorPage.contactSupport.button.one">
        <source></source>
        <translation>Cerrar</translation>
    </message>
    <!-- Accessibility -->
    <message id="sdk.accessibility.back">
        <source></source>
        <translation>Atrás</translation>
    </message>
    <message id="sdk.accessibility.close">
        <source></source>
        <translation>Cerrar</translation>
    </message>
    <message id="sdk.accessibility.busy">
        <source></source>
        <translation>Espera, por favor</translation>
    </message>
    <message id="sdk.accessibility.hidden">
        <source></source>
        <translation>Oculto</translation>
    </message>
    <message id="sdk.accessibility.shown">
        <source></source>
        <translation>Visible</translation>
    </message>
    <message id="sdk.accessibility.passcode">
        <source></source>
        <translation>%1, %2 de %3 dígitos introducidos</translation>
    </message>
</context>
</TS>
